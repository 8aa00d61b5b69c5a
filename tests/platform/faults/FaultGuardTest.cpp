#include "platform/FaultGuard.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using cvars::platform::CallGuarded;
using cvars::platform::FaultFilterInstalled;

// A page that nobody may touch.
volatile int* ClosedPage() {
  static void* page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return static_cast<volatile int*>(page);
}

HRESULT ReadClosedPage(void*) { return *ClosedPage(); }

HRESULT WriteClosedPage(void*) {
  *ClosedPage() = 1;
  return S_OK;
}

HRESULT DivideByZero(void*) {
  int quotient = 1;
  int remainder = 0;
  const int divisor = 0;
  asm volatile("idivl %2" : "+a"(quotient), "+d"(remainder) : "r"(divisor));
  return quotient;
}

HRESULT IllegalInstruction(void*) {
  asm volatile("ud2");
  return S_OK;
}

HRESULT TouchBehindEndOfFile(void*) {
  std::FILE* file = std::tmpfile();
  void* page = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, fileno(file), 0);
  std::fclose(file);
  return *static_cast<volatile int*>(page);
}

HRESULT RaiseOnOwnThread(void*) {
  raise(SIGSEGV);
  return S_OK;
}

__attribute__((noinline)) int UseUpStack(volatile int* depth) {
  volatile char block[4096];
  block[0] = static_cast<char>(*depth);
  *depth = *depth + 1;
  const int below = *depth < 1'000'000 ? UseUpStack(depth) : 0;
  return below + block[0];
}

[[maybe_unused]] HRESULT OverflowStack(void*) {
  volatile int depth = 0;
  return UseUpStack(&depth);
}

HRESULT ThrowError(void*) { throw std::runtime_error("listener failed"); }
HRESULT ThrowNumber(void*) { throw 7; }
HRESULT ReturnContext(void* context) { return *static_cast<HRESULT*>(context); }

// What the recording filter saw last, and what it answers.
std::atomic<int> filterCalls;
std::atomic<DWORD> seenCode;
std::atomic<std::uintptr_t> seenAccess;
std::atomic<std::uintptr_t> seenAddress;
std::atomic<std::uint64_t> seenStackPointer;
std::atomic<void*> seenInstruction;
std::atomic<std::uint64_t> seenProgramCounter;
std::atomic<LONG> filterAnswer;

LONG RecordingFilter(EXCEPTION_POINTERS* pointers) {
  ++filterCalls;
  seenCode = pointers->ExceptionRecord->ExceptionCode;
  seenAccess = pointers->ExceptionRecord->ExceptionInformation[0];
  seenAddress = pointers->ExceptionRecord->ExceptionInformation[1];
  seenInstruction = pointers->ExceptionRecord->ExceptionAddress;
  seenStackPointer = pointers->ContextRecord->Rsp;
  seenProgramCounter = pointers->ContextRecord->Rip;
  return filterAnswer;
}

LONG TellingFilter(EXCEPTION_POINTERS*) {
  constexpr char kText[] = "filter was asked\n";
  (void)!write(STDERR_FILENO, kText, sizeof(kText) - 1);
  return filterAnswer;
}

// A fault ends a process by its signal, or by the report of the sanitizer that handles the signal.
bool EndedByFault(int status) {
  return WIFSIGNALED(status) || (WIFEXITED(status) && WEXITSTATUS(status) != 0);
}

class FaultGuard : public testing::Test {
 protected:
  void SetUp() override {
    filterCalls = 0;
    seenCode = 0;
    filterAnswer = EXCEPTION_EXECUTE_HANDLER;
  }
  void TearDown() override { SetUnhandledExceptionFilter(nullptr); }
};
using FaultGuardDeathTest = FaultGuard;

TEST_F(FaultGuard, ReturnsWhatTheFunctionReturns) {
  for (HRESULT expected : {S_OK, S_FALSE, E_ACCESSDENIED}) {
    EXPECT_EQ(CallGuarded(&ReturnContext, &expected), expected);
    SetUnhandledExceptionFilter(&RecordingFilter);
    EXPECT_EQ(CallGuarded(&ReturnContext, &expected), expected);
    SetUnhandledExceptionFilter(nullptr);
  }
  EXPECT_EQ(filterCalls, 0);
}

TEST_F(FaultGuard, AnExceptionIsAFailureWithAndWithoutFilter) {
  for (const auto throwing : {&ThrowError, &ThrowNumber}) {
    EXPECT_EQ(CallGuarded(throwing, nullptr), E_FAIL);
    SetUnhandledExceptionFilter(&RecordingFilter);
    EXPECT_EQ(CallGuarded(throwing, nullptr), E_FAIL);
    SetUnhandledExceptionFilter(nullptr);
  }
  EXPECT_EQ(filterCalls, 0);
}

TEST_F(FaultGuard, SettingAFilterGivesThePreviousOne) {
  EXPECT_FALSE(FaultFilterInstalled());
  EXPECT_EQ(SetUnhandledExceptionFilter(&RecordingFilter), nullptr);
  EXPECT_TRUE(FaultFilterInstalled());
  EXPECT_EQ(SetUnhandledExceptionFilter(&TellingFilter), &RecordingFilter);
  EXPECT_EQ(SetUnhandledExceptionFilter(nullptr), &TellingFilter);
  EXPECT_FALSE(FaultFilterInstalled());
}

// The C library adds this bit of the kernel to the flags of each action that it sets.
constexpr int kRestorerFlag = 0x04000000;

TEST_F(FaultGuard, TheSignalsAreCaughtOnlyWhileAFilterIsInstalled) {
  for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) {
    struct sigaction before = {};
    struct sigaction during = {};
    struct sigaction after = {};
    ASSERT_EQ(sigaction(number, nullptr, &before), 0);
    SetUnhandledExceptionFilter(&RecordingFilter);
    ASSERT_EQ(sigaction(number, nullptr, &during), 0);
    SetUnhandledExceptionFilter(nullptr);
    ASSERT_EQ(sigaction(number, nullptr, &after), 0);
    EXPECT_NE(during.sa_sigaction, before.sa_sigaction) << number;
    EXPECT_EQ(after.sa_sigaction, before.sa_sigaction) << number;
    EXPECT_EQ(after.sa_flags & ~kRestorerFlag, before.sa_flags & ~kRestorerFlag) << number;
  }
}

struct ContainedCase {
  const char* name;
  HRESULT (*function)(void*);
  DWORD code;
};

class FaultGuardContained : public FaultGuard, public testing::WithParamInterface<ContainedCase> {};

constexpr ContainedCase kContainedCases[] = {
    {"Read", &ReadClosedPage, EXCEPTION_ACCESS_VIOLATION},
    {"Write", &WriteClosedPage, EXCEPTION_ACCESS_VIOLATION},
    {"DivideByZero", &DivideByZero, EXCEPTION_INT_DIVIDE_BY_ZERO},
    {"IllegalInstruction", &IllegalInstruction, EXCEPTION_ILLEGAL_INSTRUCTION},
    {"BehindEndOfFile", &TouchBehindEndOfFile, EXCEPTION_IN_PAGE_ERROR},
    {"RaisedOnOwnThread", &RaiseOnOwnThread, EXCEPTION_ACCESS_VIOLATION},
};

TEST_P(FaultGuardContained, IsAFailureAndTheProcessGoesOn) {
  SetUnhandledExceptionFilter(&RecordingFilter);
  // More than once: the signal is not left blocked.
  for (int round = 1; round <= 3; ++round) {
    EXPECT_EQ(CallGuarded(GetParam().function, nullptr), E_FAIL);
    EXPECT_EQ(filterCalls, round);
    EXPECT_EQ(seenCode, GetParam().code);
  }
}

TEST_P(FaultGuardContained, ContinueExecutionIsTakenAsHandled) {
  filterAnswer = EXCEPTION_CONTINUE_EXECUTION;
  SetUnhandledExceptionFilter(&RecordingFilter);
  EXPECT_EQ(CallGuarded(GetParam().function, nullptr), E_FAIL);
  EXPECT_EQ(filterCalls, 1);
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultGuardContained, testing::ValuesIn(kContainedCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(FaultGuard, TheRecordTellsWhereAndHowMemoryWasTouched) {
  SetUnhandledExceptionFilter(&RecordingFilter);
  EXPECT_EQ(CallGuarded(&ReadClosedPage, nullptr), E_FAIL);
  EXPECT_EQ(seenAccess, 0u);
  EXPECT_EQ(seenAddress, reinterpret_cast<std::uintptr_t>(ClosedPage()));
  EXPECT_EQ(CallGuarded(&WriteClosedPage, nullptr), E_FAIL);
  EXPECT_EQ(seenAccess, 1u);
  EXPECT_EQ(seenAddress, reinterpret_cast<std::uintptr_t>(ClosedPage()));
}

TEST_F(FaultGuard, TheContextHoldsTheRegistersOfTheFault) {
  SetUnhandledExceptionFilter(&RecordingFilter);
  EXPECT_EQ(CallGuarded(&IllegalInstruction, nullptr), E_FAIL);
  EXPECT_EQ(seenProgramCounter, reinterpret_cast<std::uint64_t>(seenInstruction.load()));
  const auto function = reinterpret_cast<std::uint64_t>(&IllegalInstruction);
  EXPECT_GE(seenProgramCounter, function);
  EXPECT_LT(seenProgramCounter, function + 256);
  int local = 0;
  const auto here = reinterpret_cast<std::uint64_t>(&local);
#ifndef __SANITIZE_ADDRESS__  // which keeps locals elsewhere
  EXPECT_LT(seenStackPointer, here);
#endif
  (void)here;
}

#ifndef __SANITIZE_THREAD__  // which needs the stack that the test uses up
TEST_F(FaultGuard, AStackOverflowIsContained) {
  SetUnhandledExceptionFilter(&RecordingFilter);
  for (int round = 1; round <= 2; ++round) {
    EXPECT_EQ(CallGuarded(&OverflowStack, nullptr), E_FAIL);
    EXPECT_EQ(filterCalls, round);
    EXPECT_EQ(seenCode, EXCEPTION_STACK_OVERFLOW);
  }
}
#endif

HRESULT innerResult;
HRESULT CallFaultingInside(void* context) {
  innerResult = CallGuarded(&ReadClosedPage, nullptr);
  return CallGuarded(&ReturnContext, context);
}
HRESULT FaultAfterInnerGuard(void* context) {
  (void)CallFaultingInside(context);
  return WriteClosedPage(nullptr);
}
HRESULT ThrowAfterInnerGuard(void* context) {
  (void)CallFaultingInside(context);
  return ThrowError(nullptr);
}

TEST_F(FaultGuard, AFaultEndsTheInnermostGuardedCallOnly) {
  SetUnhandledExceptionFilter(&RecordingFilter);
  HRESULT outer = S_FALSE;
  innerResult = S_OK;
  EXPECT_EQ(CallGuarded(&CallFaultingInside, &outer), S_FALSE);
  EXPECT_EQ(innerResult, E_FAIL);
  EXPECT_EQ(CallGuarded(&FaultAfterInnerGuard, &outer), E_FAIL);
  EXPECT_EQ(CallGuarded(&ThrowAfterInnerGuard, &outer), E_FAIL);
  EXPECT_EQ(filterCalls, 4);
}

HRESULT FaultWhileHandlingAnException(void*) {
  try {
    throw 1;
  } catch (int) {
    return ReadClosedPage(nullptr);
  }
}

TEST_F(FaultGuard, AFaultInsideACatchBlockLeavesTheExceptionStateWhole) {
  SetUnhandledExceptionFilter(&RecordingFilter);
  EXPECT_EQ(CallGuarded(&FaultWhileHandlingAnException, nullptr), E_FAIL);
  EXPECT_EQ(std::uncaught_exceptions(), 0);
  EXPECT_EQ(std::current_exception(), nullptr);
}

TEST_F(FaultGuard, ThreadsAreGuardedEachOnItsOwn) {
  SetUnhandledExceptionFilter(&RecordingFilter);
  constexpr int kThreads = 4;
  constexpr int kRounds = 25;
  std::atomic<int> contained = 0;
  std::vector<std::thread> threads;
  for (int index = 0; index < kThreads; ++index) {
    threads.emplace_back([&contained] {
      for (int round = 0; round < kRounds; ++round) {
        if (CallGuarded(&ReadClosedPage, nullptr) == E_FAIL) ++contained;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(contained, kThreads * kRounds);
  EXPECT_EQ(filterCalls, kThreads * kRounds);
}

HRESULT EndThread(void*) { pthread_exit(nullptr); }
std::atomic<bool> passedTheGuard;
[[maybe_unused]] void* EndThreadInsideGuard(void*) {
  (void)CallGuarded(&EndThread, nullptr);
  passedTheGuard = true;
  return nullptr;
}

#ifndef __SANITIZE_THREAD__  // which does not follow the unwinding of a thread that ends itself
TEST_F(FaultGuard, TheUnwindingOfAnEndingThreadPassesThrough) {
  for (const auto filter : {static_cast<LPTOP_LEVEL_EXCEPTION_FILTER>(nullptr), &RecordingFilter}) {
    SetUnhandledExceptionFilter(filter);
    passedTheGuard = false;
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, &EndThreadInsideGuard, nullptr), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_FALSE(passedTheGuard);
  }
}
#endif

TEST_F(FaultGuardDeathTest, WithoutFilterAFaultEndsTheProcess) {
  EXPECT_EXIT((void)CallGuarded(&ReadClosedPage, nullptr), EndedByFault, "");
}

TEST_F(FaultGuardDeathTest, AnswerZeroEndsTheProcessAfterTheFilterWasAsked) {
  filterAnswer = EXCEPTION_CONTINUE_SEARCH;
  for (const auto function :
       {&ReadClosedPage, &DivideByZero, &IllegalInstruction, &RaiseOnOwnThread}) {
    EXPECT_EXIT(
        {
          SetUnhandledExceptionFilter(&TellingFilter);
          (void)CallGuarded(function, nullptr);
        },
        EndedByFault, "filter was asked");
  }
}

TEST_F(FaultGuardDeathTest, AFaultOutsideEveryGuardEndsTheProcessAfterTheFilterWasAsked) {
  EXPECT_EXIT(
      {
        SetUnhandledExceptionFilter(&TellingFilter);
        (void)CallGuarded(&ThrowNumber, nullptr);
        (void)ReadClosedPage(nullptr);
      },
      EndedByFault, "filter was asked");
}

TEST_F(FaultGuardDeathTest, AFaultInsideTheFilterEndsTheProcess) {
  EXPECT_EXIT(
      {
        SetUnhandledExceptionFilter([](EXCEPTION_POINTERS*) -> LONG {
          constexpr char kText[] = "filter faults\n";
          (void)!write(STDERR_FILENO, kText, sizeof(kText) - 1);
          return ReadClosedPage(nullptr);
        });
        (void)CallGuarded(&ReadClosedPage, nullptr);
      },
      EndedByFault, "filter faults");
}

void LeaveWithSeven(int) { _exit(7); }

TEST_F(FaultGuardDeathTest, AHandlerInstalledBeforeGetsTheFaultThatTheFilterPassesOn) {
  filterAnswer = EXCEPTION_CONTINUE_SEARCH;
  EXPECT_EXIT(
      {
        std::signal(SIGFPE, &LeaveWithSeven);
        SetUnhandledExceptionFilter(&TellingFilter);
        (void)CallGuarded(&DivideByZero, nullptr);
      },
      testing::ExitedWithCode(7), "filter was asked");
}

TEST_F(FaultGuardDeathTest, AFaultAfterTheFilterWasRemovedEndsTheProcess) {
  EXPECT_EXIT(
      {
        SetUnhandledExceptionFilter(&RecordingFilter);
        (void)CallGuarded(&ReadClosedPage, nullptr);
        SetUnhandledExceptionFilter(nullptr);
        (void)CallGuarded(&ReadClosedPage, nullptr);
      },
      EndedByFault, "");
}

}  // namespace
