#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace cvars::remote {

/// Cuts the bytes of a connection into lines, whatever the pieces they arrive in.
///
/// A line ends at a line feed. A definite-length block ("#15ab\ncd" carries five bytes) may hold
/// line feeds; a quoted text may not, so a forgotten quote costs one line only. A line longer than
/// kLineLimit is dropped up to its end and announced once.
class LineReader {
 public:
  /// Longest line in bytes, its end not counted.
  static constexpr std::size_t kLineLimit = std::size_t{1} << 20;

  enum class Result {
    kNothing,  ///< more input is needed
    kLine,     ///< a line, without its line feed
    kOverrun,  ///< a line was too long and is being dropped
  };

  /// Room for at least `size` more bytes of input; ends the life of the lines given out before.
  std::span<char> Prepare(std::size_t size);
  /// Takes over the first `size` bytes that were put into the prepared room.
  void Commit(std::size_t size) noexcept { m_end += size; }
  /// Gives the next line.
  /// @param[out] line  borrowed until the next Prepare; set for kLine only.
  Result Next(std::string_view& line) noexcept;

 private:
  enum class State {
    kText,          ///< anything that needs no care
    kBeforeData,    ///< after a blank or a comma, where a block may start
    kSingleQuoted,  ///< inside '...'
    kDoubleQuoted,  ///< inside "..."
    kBlockMark,     ///< after # where a block may start
    kBlockLength,   ///< inside the digits of a block's length
    kBlockContent,  ///< inside the bytes of a block
    kDropping,      ///< inside a line that is too long
  };

  State After(char character) noexcept;
  bool IsTooLong(std::size_t length) const noexcept;

  std::vector<char> m_buffer;
  std::size_t m_begin = 0;  ///< where the unfinished line starts
  std::size_t m_scan = 0;   ///< what has been looked at
  std::size_t m_end = 0;    ///< what has arrived
  State m_state = State::kText;
  std::size_t m_digitsLeft = 0;
  std::size_t m_blockLeft = 0;
};

}  // namespace cvars::remote
