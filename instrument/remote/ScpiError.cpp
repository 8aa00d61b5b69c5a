#include "instrument/remote/ScpiError.h"

namespace cvars::remote {

std::string_view ErrorText(ScpiError error) noexcept {
  switch (error) {
    case ScpiError::kNone:
      return "No error";
    case ScpiError::kInvalidCharacter:
      return "Invalid character";
    case ScpiError::kSyntaxError:
      return "Syntax error";
    case ScpiError::kInvalidSeparator:
      return "Invalid separator";
    case ScpiError::kDataTypeError:
      return "Data type error";
    case ScpiError::kParameterNotAllowed:
      return "Parameter not allowed";
    case ScpiError::kMissingParameter:
      return "Missing parameter";
    case ScpiError::kHeaderSeparatorError:
      return "Header separator error";
    case ScpiError::kProgramMnemonicTooLong:
      return "Program mnemonic too long";
    case ScpiError::kUndefinedHeader:
      return "Undefined header";
    case ScpiError::kHeaderSuffixOutOfRange:
      return "Header suffix out of range";
    case ScpiError::kInvalidSuffix:
      return "Invalid suffix";
    case ScpiError::kSuffixNotAllowed:
      return "Suffix not allowed";
    case ScpiError::kInvalidStringData:
      return "Invalid string data";
    case ScpiError::kInvalidBlockData:
      return "Invalid block data";
    case ScpiError::kExecutionError:
      return "Execution error";
    case ScpiError::kCommandProtected:
      return "Command protected";
    case ScpiError::kSettingsConflict:
      return "Settings conflict;other settings rule this choice out";
    case ScpiError::kDataOutOfRange:
      return "Data out of range";
    case ScpiError::kIllegalParameterValue:
      return "Illegal parameter value";
    case ScpiError::kOutOfMemory:
      return "Out of memory";
    case ScpiError::kQueueOverflow:
      return "Queue overflow";
    case ScpiError::kInputBufferOverrun:
      return "Input buffer overrun";
    case ScpiError::kQueryDeadlocked:
      return "Query DEADLOCKED";
  }
  return "Execution error";
}

}  // namespace cvars::remote
