// Compiles resource scripts into the source of a module's resource table.
//
// usage: cvars_compile_resources -o <output> -d <dependency file> <script>...

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ResourceTable.h"
#include "platform/Utf8.h"

namespace {

using cvars::platform::ResourceKind;

struct Resource {
  std::string content;  // of a file
  std::wstring text;    // of a text
};

struct Resources {
  std::map<std::pair<ResourceKind, std::uint32_t>, Resource> entries;
  std::vector<std::string> files;  // that were read
};

std::optional<std::string> FileContent(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string Upper(std::string text) {
  for (char& character : text) {
    if (character >= 'a' && character <= 'z') character = static_cast<char>(character - 'a' + 'A');
  }
  return text;
}

// Reads one script.
class Script {
 public:
  Script(std::string name, Resources& resources) : m_name(std::move(name)), m_resources(resources) {
    std::optional<std::string> content = FileContent(m_name);
    if (!content) throw std::runtime_error(m_name + ": error: cannot be read");
    m_resources.files.push_back(m_name);
    m_text = std::move(*content);
    m_rest = m_text;
    if (m_rest.starts_with("\xEF\xBB\xBF")) m_rest.remove_prefix(3);
  }

  void Read() {
    for (SkipBlanks(); !m_rest.empty(); SkipBlanks()) {
      if (IsDigit(m_rest.front())) {
        ReadFileResource();
      } else if (Upper(std::string(Word())) == "STRINGTABLE") {
        ReadStringTable();
      } else {
        Fail("expected STRINGTABLE or a number");
      }
    }
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw std::runtime_error(m_name + ":" + std::to_string(m_line) + ": error: " + what);
  }

  static bool IsDigit(char character) { return character >= '0' && character <= '9'; }
  static bool IsWord(char character) {
    return IsDigit(character) || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') || character == '_';
  }

  void Advance(std::size_t count) {
    for (const char character : m_rest.substr(0, count)) m_line += character == '\n' ? 1 : 0;
    m_rest.remove_prefix(count);
  }

  // Skips blanks and comments.
  void SkipBlanks() {
    while (!m_rest.empty()) {
      if (std::string_view(" \t\r\n\f").find(m_rest.front()) != std::string_view::npos) {
        Advance(1);
      } else if (m_rest.starts_with("//")) {
        Advance(std::min(m_rest.find('\n'), m_rest.size()));
      } else if (m_rest.starts_with("/*")) {
        const std::size_t end = m_rest.find("*/", 2);
        if (end == std::string_view::npos) Fail("a comment without its end");
        Advance(end + 2);
      } else {
        return;
      }
    }
  }

  std::string_view Word() {
    std::size_t length = 0;
    while (length < m_rest.size() && IsWord(m_rest[length])) ++length;
    const std::string_view word = m_rest.substr(0, length);
    m_rest.remove_prefix(length);
    return word;
  }

  std::uint32_t Number() {
    std::string_view digits = Word();
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
      digits.remove_prefix(2);
      base = 16;
    }
    std::uint32_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, number, base);
    if (error != std::errc() || last != end) Fail("expected a number of at most 32 bits");
    return number;
  }

  // Reads the digits of an escape.
  std::uint32_t CodeOf(int base, std::size_t longest, std::size_t shortest) {
    std::uint32_t code = 0;
    const char* const first = m_rest.data();
    const auto [last, error] =
        std::from_chars(first, first + std::min(longest, m_rest.size()), code, base);
    const auto length = static_cast<std::size_t>(last - first);
    if (error != std::errc() || length < shortest) Fail("an escape that cannot be read");
    if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) Fail("an escape of no character");
    m_rest.remove_prefix(length);
    return code;
  }

  wchar_t Escape() {
    if (m_rest.empty()) Fail("a text without its closing quote");
    if (IsDigit(m_rest.front())) return static_cast<wchar_t>(CodeOf(8, 3, 1));
    constexpr std::string_view kLetters = "abfnrtv\\\"'?";
    constexpr std::wstring_view kMeanings = L"\a\b\f\n\r\t\v\\\"'?";
    const char letter = m_rest.front();
    m_rest.remove_prefix(1);
    if (letter == 'x') return static_cast<wchar_t>(CodeOf(16, 8, 1));
    if (letter == 'u') return static_cast<wchar_t>(CodeOf(16, 4, 4));
    if (letter == 'U') return static_cast<wchar_t>(CodeOf(16, 8, 8));
    const std::size_t place = kLetters.find(letter);
    if (place == std::string_view::npos) Fail("an unknown escape");
    return kMeanings[place];
  }

  std::wstring Text() {
    SkipBlanks();
    if (!m_rest.starts_with('"')) Fail("expected a text in quotes");
    m_rest.remove_prefix(1);
    std::wstring text;
    for (;;) {
      const std::size_t length = std::min(m_rest.find_first_of("\"\\\n"), m_rest.size());
      const std::wstring piece = cvars::platform::FromUtf8(m_rest.substr(0, length));
      for (const wchar_t character : piece) {
        if (character >= 0xD800 && character <= 0xDFFF) Fail("a text that is not UTF-8");
      }
      text += piece;
      m_rest.remove_prefix(length);
      if (m_rest.empty() || m_rest.front() == '\n') Fail("a text without its closing quote");
      const char stop = m_rest.front();
      m_rest.remove_prefix(1);
      if (stop == '"') return text;
      text += Escape();
    }
  }

  void Add(ResourceKind kind, std::uint32_t id, Resource resource) {
    if (!m_resources.entries.try_emplace({kind, id}, std::move(resource)).second) {
      Fail("the number " + std::to_string(id) + " is taken already");
    }
  }

  void ReadStringTable() {
    SkipBlanks();
    if (Upper(std::string(Word())) != "BEGIN") Fail("expected BEGIN");
    for (;;) {
      SkipBlanks();
      if (m_rest.empty()) Fail("a STRINGTABLE without END");
      if (!IsDigit(m_rest.front())) {
        if (Upper(std::string(Word())) != "END") Fail("expected a number or END");
        return;
      }
      const std::uint32_t id = Number();
      SkipBlanks();
      if (m_rest.starts_with(',')) m_rest.remove_prefix(1);
      Resource resource;
      resource.text = Text();
      Add(ResourceKind::kText, id, std::move(resource));
    }
  }

  void ReadFileResource() {
    const std::uint32_t id = Number();
    SkipBlanks();
    const std::string word = Upper(std::string(Word()));
    if (word != "BITMAP" && word != "ICON") Fail("expected BITMAP or ICON");
    const bool isBitmap = word == "BITMAP";
    if (isBitmap && id > 0xFFFF) Fail("the number of a bitmap has at most 16 bits");
    const std::string given = cvars::platform::ToUtf8(Text());
    const std::size_t folderEnd = m_name.rfind('/');
    const std::string name = given.starts_with('/') || folderEnd == std::string::npos
                                 ? given
                                 : m_name.substr(0, folderEnd + 1) + given;
    std::optional<std::string> content = FileContent(name);
    if (!content) Fail("the file \"" + given + "\" cannot be read");
    const std::string_view start =
        isBitmap ? std::string_view("BM") : std::string_view("\0\0\1\0", 4);
    if (!content->starts_with(start)) {
      Fail("the file \"" + given + "\" is no " + (isBitmap ? "bitmap" : "icon"));
    }
    m_resources.files.push_back(name);
    Resource resource;
    resource.content = std::move(*content);
    Add(isBitmap ? ResourceKind::kBitmap : ResourceKind::kIcon, id, std::move(resource));
  }

  std::string m_name;
  Resources& m_resources;
  std::string m_text;
  std::string_view m_rest;
  std::size_t m_line = 1;
};

const char* KindName(ResourceKind kind) {
  switch (kind) {
    case ResourceKind::kText:
      return "kText";
    case ResourceKind::kBitmap:
      return "kBitmap";
    default:
      return "kIcon";
  }
}

template <typename Sequence>
void WriteNumbers(std::ostream& out, const Sequence& sequence) {
  std::size_t count = 0;
  for (const auto element : sequence) {
    const auto number = sizeof(element) == 1 ? std::uint32_t{static_cast<unsigned char>(element)}
                                             : static_cast<std::uint32_t>(element);
    out << number << (++count % 24 == 0 ? ",\n" : ",");
  }
}

std::string Source(const Resources& resources) {
  std::ostringstream out;
  out << "// Compiled from resource scripts.\n\n#include \"platform/ResourceTable.h\"\n\n"
         "namespace {\n\n";
  std::size_t number = 0;
  std::ostringstream entries;
  for (const auto& [key, resource] : resources.entries) {
    const bool isText = key.first == ResourceKind::kText;
    out << "constexpr " << (isText ? "wchar_t" : "unsigned char") << " kData" << number << "[] = {";
    if (isText) {
      WriteNumbers(out, resource.text);
      out << "0";
    } else {
      WriteNumbers(out, resource.content);
    }
    out << "};\n";
    entries << "    {cvars::platform::ResourceKind::" << KindName(key.first) << ", " << key.second
            << "u, kData" << number << ", "
            << (isText ? resource.text.size() * sizeof(wchar_t) : resource.content.size())
            << "},\n";
    ++number;
  }
  if (number != 0) {
    out << "\nconstexpr cvars::platform::ResourceEntry kEntries[] = {\n" << entries.str() << "};\n";
  }
  out << "\n}  // namespace\n\nextern \"C\" const cvars::platform::ResourceTable "
         "cvars_module_resources = {"
      << number << ", " << (number != 0 ? "kEntries" : "nullptr") << "};\n";
  return out.str();
}

std::string DependencyName(const std::string& file) {
  std::string out;
  for (const char character : file) {
    if (character == ' ' || character == '#' || character == '\\') out += '\\';
    if (character == '$') out += '$';
    out += character;
  }
  return out;
}

void WriteFile(const std::string& name, const std::string& content) {
  std::ofstream file(name, std::ios::binary);
  file << content;
  if (!file.flush()) throw std::runtime_error(name + ": error: cannot be written");
}

int Compile(const std::vector<std::string>& arguments) {
  std::string output;
  std::string dependencies;
  Resources resources;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "-o" && i + 1 < arguments.size()) {
      output = arguments[++i];
    } else if (arguments[i] == "-d" && i + 1 < arguments.size()) {
      dependencies = arguments[++i];
    } else {
      Script(arguments[i], resources).Read();
    }
  }
  if (output.empty()) throw std::runtime_error("usage: cvars_compile_resources -o <output> ...");
  WriteFile(output, Source(resources));
  if (!dependencies.empty()) {
    std::string line = DependencyName(output) + ":";
    for (const std::string& file : resources.files) line.append(" ").append(DependencyName(file));
    WriteFile(dependencies, line + "\n");
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Compile(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
