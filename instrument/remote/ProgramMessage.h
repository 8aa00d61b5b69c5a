#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "instrument/remote/ScpiError.h"

namespace cvars::remote {

/// One parameter of a command as it was written.
struct Parameter {
  enum class Kind {
    kNumber,            ///< 1.5, -3E2, 1.5 MV
    kNonDecimal,        ///< #H1F, #Q17, #B101
    kAutomationNumber,  ///< &h1F
    kWord,              ///< MAXimum
    kString,            ///< 'a text' or "a text", quotes included
    kBlock,             ///< the bytes that a block carries
    kExpression,        ///< (1:4)
  };
  Kind kind = Kind::kWord;
  std::string_view text;  ///< borrowed from the line
};

/// The content of a quoted text: without its quotes, and doubled quotes single.
std::string Unquote(std::string_view quoted);

/// One command or query of a line.
struct ProgramUnit {
  std::string_view header;  ///< "CHANNEL1:SCALE", "*IDN"; without leading colon and question mark
  bool isCommon = false;    ///< starts with an asterisk
  bool isAbsolute = false;  ///< had a leading colon
  bool isQuery = false;
  std::string_view data;  ///< all parameters as they were written
  std::vector<Parameter> parameters;
};

/// Takes the commands out of a line one after the other.
class ProgramMessage {
 public:
  ProgramMessage() = default;
  /// @param line  borrowed, without line feed.
  explicit ProgramMessage(std::string_view line) noexcept : m_rest(line) {}

  /// True when nothing but separators is left; skips them.
  bool AtEnd() noexcept;
  /// Reads the next command; after an error goes on behind the next semicolon.
  /// @param[out] unit  overwritten; after an error its header is as far as it was understood.
  ScpiError Next(ProgramUnit& unit);

 private:
  std::string_view m_rest;
};

}  // namespace cvars::remote
