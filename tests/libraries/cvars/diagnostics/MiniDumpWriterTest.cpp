#include "MiniDumpWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "CComBSTR.h"
#include "IsolatedHome.h"
#include "ProcessStatistics.h"
#include "platform/Processes.h"
#include "platform/Volumes.h"
#include "tests/platform/system_modules/MinidumpReader.h"

namespace {

namespace fs = std::filesystem;
using cvars::MiniDumpWriter;

class MiniDumpWriterTest : public testing::Test {
 protected:
  fs::path Drive(const char* name) const { return m_home.Folder() / name; }
  fs::path MakeLogs() const {
    const fs::path folder = Drive("drive_c") / "Vortana" / "Quillon" / "Logs";
    fs::create_directories(folder);
    return folder;
  }
  static std::wstring Write(MiniDumpWriter& writer, HRESULT expected = S_OK) {
    CComBSTR path;
    EXPECT_EQ(writer.WriteDump(nullptr, &path, nullptr, 0, 0), expected);
    return std::wstring(path.View());
  }
  static bool IsDump(const fs::path& file) {
    char signature[4] = {};
    std::ifstream(file, std::ios::binary).read(signature, sizeof(signature));
    return std::string_view(signature, 4) == "MDMP";
  }

  static std::vector<DWORD> ThreadsOf(const fs::path& file) {
    std::vector<DWORD> identifiers;
    for (const auto& thread : cvars::test::MinidumpReader(file).Threads()) {
      identifiers.push_back(thread.identifier);
    }
    return identifiers;
  }

  cvars::test::IsolatedHome m_home;
};

TEST_F(MiniDumpWriterTest, ANullPathIsRefusedFirst) {
  MiniDumpWriter writer(L"VorMiniDump", L"%LOGS%", 1000, 0);
  EXPECT_EQ(writer.WriteDump(nullptr, nullptr, nullptr, 0, 0), E_POINTER);
}

TEST_F(MiniDumpWriterTest, TheNextFreeNumberIsTaken) {
  const fs::path logs = MakeLogs();
  std::ofstream(logs / "VorMiniDump.dmp") << "old";
  std::ofstream(logs / "VorMiniDump1.dmp") << "old";
  MiniDumpWriter writer(L"VorMiniDump", L"%LOGS%", 1000, 0x140);
  EXPECT_EQ(Write(writer), L"C:\\Vortana\\Quillon\\Logs\\VorMiniDump2.dmp");
  EXPECT_TRUE(IsDump(logs / "VorMiniDump2.dmp"));
  EXPECT_EQ(fs::file_size(logs / "VorMiniDump.dmp"), 3u);
}

TEST_F(MiniDumpWriterTest, WhenAllNumbersExistTheLastIsOverwritten) {
  const fs::path logs = MakeLogs();
  std::ofstream(logs / "Test.dmp") << "old";
  std::ofstream(logs / "Test1.dmp") << "old";
  std::ofstream(logs / "Test2.dmp") << "old";
  MiniDumpWriter writer(L"Test", L"%LOGS%", 3, 0);
  EXPECT_EQ(Write(writer), L"C:\\Vortana\\Quillon\\Logs\\Test2.dmp");
  EXPECT_TRUE(IsDump(logs / "Test2.dmp"));
  EXPECT_FALSE(fs::exists(logs / "Test3.dmp"));
}

TEST_F(MiniDumpWriterTest, TheLogsFolderIsKnownInAnyCase) {
  MakeLogs();
  MiniDumpWriter writer(L"VorMiniDump", L"%logs%", 1000, 0);
  EXPECT_EQ(Write(writer), L"C:\\Vortana\\Quillon\\Logs\\VorMiniDump.dmp");
}

TEST_F(MiniDumpWriterTest, ADriveDLabelledUserdataInAnyCaseHasTheLogs) {
  MakeLogs();
  fs::create_directories(Drive("drive_d") / "Logs");
  ASSERT_NE(SetVolumeLabel(L"D:\\", L"userdata"), 0);
  MiniDumpWriter writer(L"VorMiniDump", L"%LOGS%", 1000, 0);
  EXPECT_EQ(Write(writer), L"D:\\Logs\\VorMiniDump.dmp");
  EXPECT_TRUE(IsDump(Drive("drive_d") / "Logs" / "VorMiniDump.dmp"));
}

TEST_F(MiniDumpWriterTest, AnotherLabelOfDriveDChangesNothing) {
  MakeLogs();
  fs::create_directories(Drive("drive_d") / "Logs");
  ASSERT_NE(SetVolumeLabel(L"D:\\", L"USERDATA2"), 0);
  MiniDumpWriter writer(L"VorMiniDump", L"%LOGS%", 1000, 0);
  EXPECT_EQ(Write(writer), L"C:\\Vortana\\Quillon\\Logs\\VorMiniDump.dmp");
}

// Gives the process a current folder of its own.
class CurrentFolder {
 public:
  explicit CurrentFolder(const fs::path& folder) : m_before(fs::current_path()) {
    fs::create_directories(folder);
    fs::current_path(folder);
  }
  ~CurrentFolder() { fs::current_path(m_before); }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;

 private:
  fs::path m_before;
};

TEST_F(MiniDumpWriterTest, LabelledWithoutLogsFolderTheCurrentFolderIsTaken) {
  const CurrentFolder current(m_home.Folder() / "here");
  ASSERT_NE(SetVolumeLabel(L"D:\\", L"USERDATA"), 0);
  MiniDumpWriter writer(L"VorMiniDump", L"%LOGS%", 1000, 0);
  EXPECT_EQ(Write(writer), L"VorMiniDump.dmp");
  EXPECT_TRUE(IsDump("VorMiniDump.dmp"));
}

TEST_F(MiniDumpWriterTest, WithoutFolderTheCurrentFolderIsTaken) {
  const CurrentFolder current(m_home.Folder() / "here");
  for (const wchar_t* folder : {L"", L"C:\\Missing", static_cast<const wchar_t*>(nullptr)}) {
    MiniDumpWriter writer(L"Test", folder, 1000, 0);
    EXPECT_EQ(Write(writer), L"Test.dmp");
    EXPECT_TRUE(fs::remove("Test.dmp"));
  }
}

TEST_F(MiniDumpWriterTest, AnyOtherFolderIsTakenAsGiven) {
  fs::create_directories(Drive("drive_c") / "Dumps");
  for (const wchar_t* folder : {L"C:\\Dumps", L"C:\\Dumps\\"}) {
    MiniDumpWriter writer(L"Test", folder, 1, 0);
    EXPECT_EQ(Write(writer), L"C:\\Dumps\\Test.dmp");
  }
}

TEST_F(MiniDumpWriterTest, AFileThatCannotBeMadeGivesTheSystemsError) {
  fs::create_directories(MakeLogs() / "Test.dmp");
  MiniDumpWriter writer(L"Test", L"%LOGS%", 1, 0);
  const std::wstring path = Write(writer, E_ACCESSDENIED);
  EXPECT_EQ(path, L"");
}

TEST_F(MiniDumpWriterTest, ADumpThatFailsClosesItsFileAndGivesNoPath) {
  const fs::path logs = MakeLogs();
  MiniDumpWriter writer(L"Test", L"%LOGS%", 1, 0);
  CComBSTR path;
  const auto descriptors = [] {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  };
  EXPECT_EQ(Write(writer), L"C:\\Vortana\\Quillon\\Logs\\Test.dmp");  // loads the library
  const auto before = descriptors();
  constexpr ULONG kNoSuchProcess = 0x7FFFFFFF;
  EXPECT_TRUE(FAILED(writer.WriteDump(nullptr, &path, nullptr, kNoSuchProcess, 0)));
  EXPECT_EQ(static_cast<BSTR>(path), nullptr);
  EXPECT_EQ(descriptors(), before);
}

TEST_F(MiniDumpWriterTest, ALibraryOfVersionTenInTheProgramsFolderIsPassedOver) {
  // This program is linked into a folder where a library of version 10.0.19041.1 stands.
  const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
  ASSERT_TRUE(fs::exists(folder / "DbgHelp.dll"));
  MakeLogs();
  MiniDumpWriter writer(L"Test", L"%LOGS%", 1000, 0);
  EXPECT_EQ(Write(writer), L"C:\\Vortana\\Quillon\\Logs\\Test.dmp");
  EXPECT_TRUE(IsDump(MakeLogs() / "Test.dmp"));
}

// A process whose system folder holds no dump library, and whose program folder one that is passed
// over, so that the search comes to the folders of PATH. Gives the lines that it prints.
class DumpLibrarySearch : public MiniDumpWriterTest {
 protected:
  DumpLibrarySearch() {
    MakeLogs();
    // The system folder is the one of the platform library.
    fs::create_directories(m_systemFolder);
    fs::copy_file(CVARS_PLATFORM_LIBRARY, m_systemFolder / CVARS_PLATFORM_LIBRARY_NAME);
  }

  std::vector<std::string> Search(const std::string& path) const {
    const std::string command = "PATH='" + path + "' LD_LIBRARY_PATH='" + m_systemFolder.string() +
                                "' " CVARS_DUMP_LIBRARY_SEARCH;
    FILE* const output = popen(command.c_str(), "r");
    if (output == nullptr) return {};
    std::vector<std::string> lines;
    char line[4096];
    while (fgets(line, sizeof(line), output) != nullptr) {
      lines.emplace_back(line, std::strcspn(line, "\n"));
    }
    EXPECT_EQ(pclose(output), 0);
    return lines;
  }

  static std::string FolderOf(const char* file) { return fs::path(file).parent_path().string(); }

  const fs::path m_systemFolder = m_home.Folder() / "system";
  const std::string m_incomplete = FolderOf(CVARS_INCOMPLETE_DUMP_LIBRARY);
  const std::string m_complete = FolderOf(CVARS_DUMP_LIBRARY);
};

TEST_F(DumpLibrarySearch, TheFoldersOfPathComeLast) {
  EXPECT_EQ(Search("/missing:" + m_complete),
            (std::vector<std::string>{"00000000", CVARS_DUMP_LIBRARY}));
  EXPECT_TRUE(IsDump(MakeLogs() / "Search.dmp"));
}

TEST_F(DumpLibrarySearch, ALibraryWithoutTheFunctionIsFreedAndPassedOver) {
  EXPECT_EQ(Search(m_incomplete + ":" + m_complete),
            (std::vector<std::string>{"00000000", CVARS_DUMP_LIBRARY}));
  EXPECT_TRUE(IsDump(MakeLogs() / "Search.dmp"));
}

TEST_F(DumpLibrarySearch, ALibraryWithoutTheFunctionAloneGivesTheSystemsError) {
  constexpr char kProcedureNotFound[] = "8007007f";
  EXPECT_EQ(Search(m_incomplete), std::vector<std::string>{kProcedureNotFound});
  EXPECT_FALSE(fs::exists(MakeLogs() / "Search.dmp"));
}

TEST_F(DumpLibrarySearch, WithoutAnyLibraryItFails) {
  EXPECT_EQ(Search("/missing"), std::vector<std::string>{"80004005"});
}

TEST_F(MiniDumpWriterTest, TheExceptionBelongsToTheGivenThread) {
  MakeLogs();
  EXCEPTION_RECORD record = {};
  record.ExceptionCode = EXCEPTION_ACCESS_VIOLATION;
  CONTEXT context = {};
  EXCEPTION_POINTERS pointers = {&record, &context};
  MiniDumpWriter writer(L"Test", L"%LOGS%", 1000, 0);
  CComBSTR path;
  ASSERT_EQ(writer.WriteDump(&pointers, &path, nullptr, 0, 0), S_OK);
  ASSERT_EQ(writer.WriteDump(&pointers, &path, nullptr, 0, 1234), S_OK);
  const cvars::test::MinidumpReader ofThisThread(MakeLogs() / "Test.dmp");
  EXPECT_EQ(ofThisThread.ExceptionInfo().thread, GetCurrentThreadId());
  EXPECT_EQ(ofThisThread.ExceptionInfo().code, static_cast<std::uint32_t>(SIGSEGV));
  const cvars::test::MinidumpReader ofOther(MakeLogs() / "Test1.dmp");
  EXPECT_EQ(ofOther.ExceptionInfo().thread, 1234u);
}

TEST_F(MiniDumpWriterTest, AProcessIsKnownByItsHandleAlone) {
  MakeLogs();
  MiniDumpWriter writer(L"Test", L"%LOGS%", 1000, 0);
  CComBSTR path;
  ASSERT_EQ(writer.WriteDump(nullptr, &path, GetCurrentProcess(), 0, 0), S_OK);
  EXPECT_THAT(ThreadsOf(MakeLogs() / "Test.dmp"), testing::Contains(GetCurrentThreadId()));

  int finish[2];
  ASSERT_EQ(pipe(finish), 0);
  const pid_t child = fork();
  if (child == 0) {
    close(finish[1]);
    char token;
    (void)!read(finish[0], &token, 1);
    _exit(0);
  }
  close(finish[0]);
  const HANDLE process =
      OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, 0, static_cast<DWORD>(child));
  path.Empty();
  EXPECT_EQ(writer.WriteDump(nullptr, &path, process, 0, 0), S_OK);
  CloseHandle(process);
  EXPECT_EQ(ThreadsOf(MakeLogs() / "Test1.dmp"), std::vector<DWORD>{static_cast<DWORD>(child)});
  close(finish[1]);
  EXPECT_EQ(waitpid(child, nullptr, 0), child);
}

TEST(ProcessStatistics, CountsTheMemoryOfAProcess) {
  cvars::ProcessStatistics statistics;
  for (const int index : {0, 1, 2, 4, 7, 8}) {
    EXPECT_GT(statistics.MemoryCounter(0, index), 0u) << index;
    EXPECT_GT(statistics.MemoryCounter(GetCurrentProcessId(), index), 0u) << index;
  }
  EXPECT_GE(statistics.MemoryCounter(0, 1), statistics.MemoryCounter(0, 2));
  EXPECT_GE(statistics.MemoryCounter(0, 8), 1024u);
  EXPECT_GE(statistics.MemoryCounter(0, 3), 1024u);
}

TEST(ProcessStatistics, GivesZeroForOtherIndexesAndProcesses) {
  cvars::ProcessStatistics statistics;
  EXPECT_EQ(statistics.MemoryCounter(0, -1), 0u);
  EXPECT_EQ(statistics.MemoryCounter(0, 9), 0u);
  constexpr ULONG kNoSuchProcess = 0x7FFFFFFF;
  EXPECT_EQ(statistics.MemoryCounter(kNoSuchProcess, 2), 0u);
}

TEST(ProcessStatistics, WorkingSetFollowsWhatIsUsed) {
  cvars::ProcessStatistics statistics;
  const std::size_t before = statistics.MemoryCounter(0, 2);
  const std::string used(64 << 20, 'x');
  EXPECT_GT(statistics.MemoryCounter(0, 2), before + (48 << 20)) << used.size();
}

}  // namespace
