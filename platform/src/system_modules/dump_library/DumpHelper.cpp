#include "DumpHelper.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <new>
#include <system_error>

#include "DumpWriter.h"

namespace {

using namespace cvars::platform;

// Reads what the process's fault filter was given.
std::optional<DumpedFault> ReadFault(const StoppedProcess& process, pid_t thread,
                                     std::uint64_t address) {
  if (address == 0) return std::nullopt;
  const auto pointers = process.ReadObject<EXCEPTION_POINTERS>(address);
  if (!pointers) return std::nullopt;
  const auto record = process.ReadObject<EXCEPTION_RECORD>(
      reinterpret_cast<std::uint64_t>(pointers->ExceptionRecord));
  const auto context =
      process.ReadObject<CONTEXT>(reinterpret_cast<std::uint64_t>(pointers->ContextRecord));
  if (!record || !context) return std::nullopt;
  return DumpedFault{thread, *record, *context};
}

int WriteDump(char** arguments) {
  const auto number = [arguments](int index) {
    return std::strtoull(arguments[index], nullptr, 10);
  };
  try {
    const StoppedProcess process(static_cast<pid_t>(number(1)));
    const auto fault = ReadFault(process, static_cast<pid_t>(number(2)), number(4));
    WriteMiniDump(process, fault, static_cast<std::uint32_t>(number(3)), kDumpHelperFile);
    return 0;
  } catch (const std::system_error& error) {
    return error.code().value();
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
}

}  // namespace

int main(int argumentCount, char** arguments) {
  char start = 0;
  if (argumentCount != 5 || read(kDumpHelperStart, &start, 1) != 1) return 2;
  const int result = WriteDump(arguments);
  return write(kDumpHelperAnswer, &result, sizeof(result)) == sizeof(result) ? 0 : 1;
}
