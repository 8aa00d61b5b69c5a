#include "platform/NamedMutex.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include "IsolatedHome.h"
#include "platform/LastError.h"

namespace {

constexpr wchar_t kName[] = L"Vortana Tattler Enabled";

class NamedMutex : public testing::Test {
 protected:
  cvars::test::IsolatedHome m_home;
};

// Another process; it ends when the test says so, or is killed.
class OtherProcess {
 public:
  // @param body  runs in the other process, which then tells that it is ready and waits.
  explicit OtherProcess(const std::function<void()>& body) {
    int ready[2];
    int finish[2];
    if (pipe(ready) != 0 || pipe(finish) != 0) std::abort();
    m_process = fork();
    if (m_process == 0) {
      close(finish[1]);
      body();
      char token = 'x';
      (void)!write(ready[1], &token, 1);
      (void)!read(finish[0], &token, 1);
      _exit(0);
    }
    char token = 0;
    (void)!read(ready[0], &token, 1);
    close(ready[0]);
    close(ready[1]);
    close(finish[0]);
    m_finish = finish[1];
  }
  ~OtherProcess() { End(); }

  void End() {
    if (m_process < 0) return;
    close(m_finish);
    Reap();
  }
  void Kill() {
    kill(m_process, SIGKILL);
    close(m_finish);
    Reap();
  }

 private:
  void Reap() {
    waitpid(m_process, nullptr, 0);
    m_process = -1;
  }
  pid_t m_process = -1;
  int m_finish = -1;
};

// Runs on another thread of this process and waits for it.
DWORD OnOtherThread(const std::function<DWORD()>& body) {
  DWORD result = 0;
  std::thread([&] { result = body(); }).join();
  return result;
}

TEST_F(NamedMutex, WhatNobodyMadeIsNotFound) {
  EXPECT_EQ(OpenMutex(MUTEX_ALL_ACCESS, 0, kName), nullptr);
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(OpenMutex(MUTEX_ALL_ACCESS, 0, nullptr), nullptr);
}

TEST_F(NamedMutex, TheNameGoesWithTheLastHandle) {
  const HANDLE made = CreateMutex(nullptr, 0, kName);
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
  const HANDLE opened = OpenMutex(MUTEX_ALL_ACCESS, 0, kName);
  ASSERT_NE(opened, nullptr);
  EXPECT_EQ(CloseHandle(made), 1);
  const HANDLE again = OpenMutex(MUTEX_ALL_ACCESS, 0, kName);
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(CloseHandle(again), 1);
  EXPECT_EQ(CloseHandle(opened), 1);
  EXPECT_EQ(OpenMutex(MUTEX_ALL_ACCESS, 0, kName), nullptr);
}

TEST_F(NamedMutex, AClosedHandleIsInvalid) {
  const HANDLE made = CreateMutex(nullptr, 0, kName);
  EXPECT_EQ(CloseHandle(made), 1);
  EXPECT_EQ(CloseHandle(made), 0);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_EQ(WaitForSingleObject(made, 0), WAIT_FAILED);
  EXPECT_EQ(ReleaseMutex(made), 0);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_EQ(CloseHandle(nullptr), 0);
}

TEST_F(NamedMutex, MakingOneThatExistsOpensItAndDoesNotOwnIt) {
  const HANDLE first = CreateMutex(nullptr, 0, kName);
  const HANDLE second = CreateMutex(nullptr, 1, kName);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(ReleaseMutex(second), 0);
  EXPECT_EQ(GetLastError(), ERROR_NOT_OWNER);
  CloseHandle(first);
  CloseHandle(second);
}

TEST_F(NamedMutex, OwnershipBelongsToAThreadAndCounts) {
  const HANDLE mutex = CreateMutex(nullptr, 1, kName);
  EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
  const auto waitElsewhere = [mutex] { return WaitForSingleObject(mutex, 0); };
  const auto waitAndRelease = [mutex] {
    const DWORD answer = WaitForSingleObject(mutex, 0);
    ReleaseMutex(mutex);
    return answer;
  };
  EXPECT_EQ(OnOtherThread(waitElsewhere), WAIT_TIMEOUT);
  EXPECT_EQ(OnOtherThread([mutex]() -> DWORD { return ReleaseMutex(mutex) != 0 ? 1 : 0; }), 0u);
  EXPECT_EQ(ReleaseMutex(mutex), 1);
  EXPECT_EQ(ReleaseMutex(mutex), 1);
  EXPECT_EQ(OnOtherThread(waitElsewhere), WAIT_TIMEOUT);
  EXPECT_EQ(ReleaseMutex(mutex), 1);
  EXPECT_EQ(OnOtherThread(waitAndRelease), WAIT_OBJECT_0);
  EXPECT_EQ(ReleaseMutex(mutex), 0);
  EXPECT_EQ(GetLastError(), ERROR_NOT_OWNER);
  CloseHandle(mutex);
}

TEST_F(NamedMutex, AWaitEndsWhenItsTimeHasRunOut) {
  const HANDLE mutex = CreateMutex(nullptr, 1, kName);
  EXPECT_EQ(OnOtherThread([mutex] { return WaitForSingleObject(mutex, 20); }), WAIT_TIMEOUT);
  ReleaseMutex(mutex);
  CloseHandle(mutex);
}

TEST_F(NamedMutex, AThreadThatEndedOwningItLeavesItAbandonedOnce) {
  const HANDLE mutex = CreateMutex(nullptr, 0, kName);
  EXPECT_EQ(OnOtherThread([mutex] { return WaitForSingleObject(mutex, 0); }), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(mutex, 1000), WAIT_ABANDONED);
  EXPECT_EQ(ReleaseMutex(mutex), 1);
  EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
  EXPECT_EQ(ReleaseMutex(mutex), 1);
  CloseHandle(mutex);
}

TEST_F(NamedMutex, IsSharedWithOtherProcesses) {
  OtherProcess other([] { CreateMutex(nullptr, 1, kName); });
  const HANDLE mutex = OpenMutex(MUTEX_ALL_ACCESS, 0, kName);
  ASSERT_NE(mutex, nullptr);
  EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
  other.End();
  EXPECT_EQ(WaitForSingleObject(mutex, 1000), WAIT_ABANDONED);
  EXPECT_EQ(ReleaseMutex(mutex), 1);
  CloseHandle(mutex);
}

TEST_F(NamedMutex, AKilledOwnerWithoutOtherHandlesLeavesNothing) {
  OtherProcess other([] { CreateMutex(nullptr, 1, kName); });
  other.Kill();
  EXPECT_EQ(OpenMutex(MUTEX_ALL_ACCESS, 0, kName), nullptr);
  const HANDLE fresh = CreateMutex(nullptr, 1, kName);
  EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
  EXPECT_EQ(ReleaseMutex(fresh), 1);
  CloseHandle(fresh);
}

TEST_F(NamedMutex, AKilledOwnerWithAnotherHandleIsToldOnce) {
  OtherProcess other([] { CreateMutex(nullptr, 1, kName); });
  const HANDLE mutex = OpenMutex(MUTEX_ALL_ACCESS, 0, kName);
  ASSERT_NE(mutex, nullptr);
  other.Kill();
  EXPECT_EQ(WaitForSingleObject(mutex, 1000), WAIT_ABANDONED);
  EXPECT_EQ(ReleaseMutex(mutex), 1);
  EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
  EXPECT_EQ(ReleaseMutex(mutex), 1);
  CloseHandle(mutex);
}

TEST_F(NamedMutex, BelongsToItsHome) {
  const HANDLE outer = CreateMutex(nullptr, 0, kName);
  {
    const cvars::test::IsolatedHome otherHome;
    EXPECT_EQ(OpenMutex(MUTEX_ALL_ACCESS, 0, kName), nullptr);
    const HANDLE inner = CreateMutex(nullptr, 0, kName);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    CloseHandle(inner);
  }
  const HANDLE again = OpenMutex(MUTEX_ALL_ACCESS, 0, kName);
  EXPECT_NE(again, nullptr);
  CloseHandle(again);
  CloseHandle(outer);
}

TEST_F(NamedMutex, NamesMayHoldAnyCharacterAndTheirCaseCounts) {
  const std::wstring names[] = {L"a/b",
                                L"a\\b",
                                L"..",
                                L"a.b",
                                L"A/b",
                                L"Gr\u00F6\u00DFe \u03A9",
                                std::wstring(300, L'x'),
                                std::wstring(300, L'x') + L"y"};
  std::vector<HANDLE> handles;
  for (const std::wstring& name : names) {
    handles.push_back(CreateMutex(nullptr, 0, name.c_str()));
    ASSERT_NE(handles.back(), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
  }
  for (const HANDLE handle : handles) CloseHandle(handle);
  for (const std::wstring& name : names) {
    EXPECT_EQ(OpenMutex(MUTEX_ALL_ACCESS, 0, name.c_str()), nullptr);
  }
}

TEST_F(NamedMutex, WithoutNameEachIsItsOwn) {
  const HANDLE first = CreateMutex(nullptr, 1, nullptr);
  const HANDLE second = CreateMutex(nullptr, 1, L"");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(ReleaseMutex(first), 1);
  EXPECT_EQ(ReleaseMutex(second), 1);
  CloseHandle(first);
  CloseHandle(second);
}

TEST_F(NamedMutex, ClosedWhileOwnedItStaysUsableByOthers) {
  const HANDLE owned = CreateMutex(nullptr, 1, kName);
  OtherProcess other([] { OpenMutex(MUTEX_ALL_ACCESS, 0, kName); });
  CloseHandle(owned);
  const HANDLE again = OpenMutex(MUTEX_ALL_ACCESS, 0, kName);
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(OnOtherThread([again] { return WaitForSingleObject(again, 0); }), WAIT_TIMEOUT);
  EXPECT_EQ(ReleaseMutex(again), 1);
  CloseHandle(again);
}

TEST_F(NamedMutex, ExcludesThreadsFromEachOther) {
  const HANDLE mutex = CreateMutex(nullptr, 0, kName);
  int counter = 0;
  const auto count = [&counter, mutex] {
    for (int round = 0; round < 500; ++round) {
      ASSERT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
      ++counter;
      ASSERT_EQ(ReleaseMutex(mutex), 1);
    }
  };
  std::thread first(count);
  std::thread second(count);
  first.join();
  second.join();
  EXPECT_EQ(counter, 1000);
  CloseHandle(mutex);
}

}  // namespace
