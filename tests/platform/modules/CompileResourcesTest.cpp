#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "IsolatedHome.h"

namespace {

class CompileResourcesTest : public testing::Test {
 protected:
  // Compiles a script; what the compiler says goes to m_output.
  int Compile(const std::string& script) {
    std::ofstream(Script()) << script;
    const std::string command = std::string(CVARS_COMPILE_RESOURCES) + " -o " + Result().string() +
                                " -d " + Result().string() + ".d " + Script().string() + " 2>&1";
    m_output.clear();
    FILE* const pipe = popen(command.c_str(), "r");
    char block[256];
    while (fgets(block, sizeof(block), pipe) != nullptr) m_output += block;
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  std::filesystem::path Script() const { return m_home.Folder() / "script.rc"; }
  std::filesystem::path Result() const { return m_home.Folder() / "result.cpp"; }

  cvars::test::IsolatedHome m_home;
  std::string m_output;
};

struct ErrorCase {
  const char* name;
  const char* script;
  int line;
  const char* message;
};

constexpr ErrorCase kErrorCases[] = {
    {"UnknownStatement", "\nMENU 1", 2, "expected STRINGTABLE or a number"},
    {"TableWithoutBegin", "STRINGTABLE\n\n1 \"a\"", 3, "expected BEGIN"},
    {"TableWithoutEnd", "STRINGTABLE BEGIN\n1 \"a\"\n", 3, "a STRINGTABLE without END"},
    {"NumberTaken", "STRINGTABLE BEGIN\n1 \"a\"\n1 \"b\"\nEND", 3, "the number 1 is taken already"},
    {"NumberTakenInOtherSpelling", "STRINGTABLE BEGIN 16 \"a\"\n0x10 \"b\" END", 2,
     "the number 16 is taken already"},
    {"NumberTooLarge", "STRINGTABLE BEGIN 4294967296 \"a\" END", 1,
     "expected a number of at most 32 bits"},
    {"PrefixAlone", "STRINGTABLE BEGIN 0x \"a\" END", 1, "expected a number of at most 32 bits"},
    {"NoText", "STRINGTABLE BEGIN 1 END", 1, "expected a text in quotes"},
    {"OpenText", "STRINGTABLE BEGIN\n1 \"a\nEND", 2, "a text without its closing quote"},
    {"UnknownEscape", "STRINGTABLE BEGIN 1 \"\\q\" END", 1, "an unknown escape"},
    {"EscapeOfNoCharacter", "STRINGTABLE BEGIN 1 \"\\uD800\" END", 1, "an escape of no character"},
    {"ShortEscape", "STRINGTABLE BEGIN 1 \"\\u12\" END", 1, "an escape that cannot be read"},
    {"BrokenUtf8", "STRINGTABLE BEGIN 1 \"\xB5\" END", 1, "a text that is not UTF-8"},
    {"OpenComment", "\n/* a\nb", 2, "a comment without its end"},
    {"UnknownKind", "1 CURSOR \"a.cur\"", 1, "expected BITMAP or ICON"},
    {"MissingFile", "// a\n1 BITMAP \"no.bmp\"", 2, "the file \"no.bmp\" cannot be read"},
    {"FileOfOtherKind", "1 BITMAP \"script.rc\"", 1, "the file \"script.rc\" is no bitmap"},
    {"IconOfOtherKind", "1 ICON \"script.rc\"", 1, "the file \"script.rc\" is no icon"},
    {"BitmapNumberTooLarge", "65536 BITMAP \"a.bmp\"", 1,
     "the number of a bitmap has at most 16 bits"},
};

TEST_F(CompileResourcesTest, ErrorsNameFileAndLine) {
  for (const ErrorCase& row : kErrorCases) {
    EXPECT_EQ(Compile(row.script), 1) << row.name;
    EXPECT_EQ(m_output,
              Script().string() + ":" + std::to_string(row.line) + ": error: " + row.message + "\n")
        << row.name;
    EXPECT_FALSE(std::filesystem::exists(Result())) << row.name;
  }
}

TEST_F(CompileResourcesTest, EmptyScriptGivesAnEmptyTable) {
  EXPECT_EQ(Compile(""), 0);
  EXPECT_EQ(m_output, "");
  EXPECT_TRUE(std::filesystem::exists(Result()));
}

TEST_F(CompileResourcesTest, DependenciesNameEveryFileRead) {
  std::filesystem::copy_file(CVARS_SOURCE_DIR "/tests/platform/modules/knob.bmp",
                             m_home.Folder() / "knob.bmp");
  ASSERT_EQ(Compile("1 BITMAP \"knob.bmp\""), 0) << m_output;
  std::ifstream file(Result().string() + ".d");
  std::string line;
  std::getline(file, line);
  EXPECT_EQ(line, Result().string() + ": " + Script().string() + " " +
                      (m_home.Folder() / "knob.bmp").string());
}

}  // namespace
