#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "instrument/remote/Command.h"

namespace cvars::remote {

/// Every spelling that a header pattern stands for, in upper case.
///
/// "SYSTem:ERRor[:NEXT]" stands for each mix of long and short forms, with and without the part in
/// brackets.
std::vector<std::string> HeaderSpellings(std::string_view pattern);

/// Finds the command of a header.
class CommandTable {
 public:
  /// Longest header that is looked up; what a path puts in front of it counts.
  static constexpr std::size_t kLongestHeader = 512;

  /// Adds a command under every spelling of a pattern; the first command of a spelling stays.
  void Add(std::string_view pattern, std::shared_ptr<const Command> command);
  /// Adds a command under a header that has one spelling only, whatever its case.
  /// @return false when the header is taken.
  bool AddVerbatim(std::string_view header, std::shared_ptr<const Command> command);

  /// Finds the command of a header, which is in upper case and without leading colon.
  ///
  /// A missing numeric suffix means 1, so CHANNEL and CHANNEL1 are the same.
  /// @param[out] command  borrowed; null on failure.
  /// @retval kHeaderSuffixOutOfRange  the header is known with another numeric suffix
  /// @retval kUndefinedHeader
  /// @retval kNone
  ScpiError Find(std::string_view header, const Command*& command) const;

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept {
      return std::hash<std::string_view>{}(text);
    }
  };
  template <typename Value>
  using ByText = std::unordered_map<std::string, Value, Hash, std::equal_to<>>;

  bool Insert(std::string spelling, const std::shared_ptr<const Command>& command);

  ByText<std::shared_ptr<const Command>> m_commands;
  /// The same without numeric suffixes, for headers that are written in another way.
  ByText<std::vector<std::string>> m_bySuffixless;
};

}  // namespace cvars::remote
