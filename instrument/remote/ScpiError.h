#pragma once

#include <string_view>

namespace cvars::remote {

/// The errors that a remote client can find in its error queue, by their standard numbers.
enum class ScpiError : int {
  kNone = 0,
  // Command errors: the text of the command is wrong.
  kInvalidCharacter = -101,
  kSyntaxError = -102,
  kInvalidSeparator = -103,
  kDataTypeError = -104,
  kParameterNotAllowed = -108,
  kMissingParameter = -109,
  kHeaderSeparatorError = -111,
  kProgramMnemonicTooLong = -112,
  kUndefinedHeader = -113,
  kHeaderSuffixOutOfRange = -114,
  kInvalidSuffix = -131,
  kSuffixNotAllowed = -138,
  kInvalidStringData = -151,
  kInvalidBlockData = -161,
  // Execution errors: the command is understood but cannot be done.
  kExecutionError = -200,
  kCommandProtected = -203,
  kSettingsConflict = -221,
  kDataOutOfRange = -222,
  kIllegalParameterValue = -224,
  // Device-specific errors.
  kOutOfMemory = -321,
  kQueueOverflow = -350,
  kInputBufferOverrun = -363,
  // Query errors: answers cannot be delivered.
  kQueryDeadlocked = -430,
};

/// The standard text of an error, "No error" for kNone.
std::string_view ErrorText(ScpiError error) noexcept;

}  // namespace cvars::remote
