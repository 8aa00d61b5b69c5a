#include "RegistryText.h"

#include <charconv>
#include <cstring>
#include <optional>
#include <utility>

#include "platform/Registry.h"
#include "platform/Utf8.h"

namespace cvars::platform {
namespace {

constexpr std::string_view kHeader = "Windows Registry Editor Version 5.00";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kBytesPerLine = 24;

// The text of a value that quotes can show: one line with its terminator, and nothing after it.
std::optional<std::wstring> QuotableText(const RegistryValue& value) {
  const std::size_t bytes = value.data.size();
  if (value.type != REG_SZ || bytes < sizeof(wchar_t) || bytes % sizeof(wchar_t) != 0) return {};
  std::wstring text(bytes / sizeof(wchar_t), L'\0');
  std::memcpy(text.data(), value.data.data(), bytes);
  if (text.back() != L'\0') return {};
  text.pop_back();
  if (!IsAllowedName(text)) return {};
  return text;
}

std::string Quoted(std::wstring_view text) {
  std::string out = "\"";
  for (const char character : ToUtf8(text)) {
    if (character == '"' || character == '\\') out += '\\';
    out += character;
  }
  return out += '"';
}

std::string HexNumber(std::uint64_t value, int digits) {
  std::string out(static_cast<std::size_t>(digits), '0');
  for (std::size_t i = out.size(); i-- > 0; value >>= 4) out[i] = "0123456789abcdef"[value & 0xF];
  return out;
}

std::string HexBytes(const RegistryValue& value) {
  std::string out = "hex";
  if (value.type != REG_BINARY) {
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value.type, 16).ptr;
    out += '(';
    out.append(digits, end);
    out += ')';
  }
  out += ':';
  for (std::size_t i = 0; i < value.data.size(); ++i) {
    if (i > 0) out += i % kBytesPerLine == 0 ? ",\\\n  " : ",";
    out += HexNumber(value.data[i], 2);
  }
  return out;
}

std::string DataText(const RegistryValue& value) {
  if (const auto text = QuotableText(value)) return Quoted(*text);
  if (value.type == REG_DWORD && value.data.size() == sizeof(DWORD)) {
    DWORD number = 0;
    std::memcpy(&number, value.data.data(), sizeof(number));
    return "dword:" + HexNumber(number, 8);
  }
  return HexBytes(value);
}

void WriteKey(std::string& out, const RegistryTree& key, const std::wstring& path) {
  // A key that only leads to others is told by their paths.
  if (!key.values.empty() || key.keys.empty()) {
    out += "\n[" + ToUtf8(path) + "]\n";
    for (const auto& [folded, value] : key.values) {
      out += value.name.empty() ? "@" : Quoted(value.name);
      out += '=' + DataText(value) + '\n';
    }
  }
  for (const auto& [folded, below] : key.keys) WriteKey(out, below, path + L'\\' + below.name);
}

std::string_view Trimmed(std::string_view line) {
  const std::size_t first = line.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return line.substr(first, line.find_last_not_of(" \t") - first + 1);
}

// Reads a file line by line.
class Reader {
 public:
  Reader(std::string_view text, std::wstring_view rootName)
      : m_rest(text), m_rootName(FoldName(rootName)) {
    if (m_rest.starts_with(kByteOrderMark)) m_rest.remove_prefix(kByteOrderMark.size());
  }

  RegistryTree Read() {
    std::string_view line;
    if (!NextLine(line) || Trimmed(line) != kHeader) Fail("this is no registry file");
    while (NextLine(line)) {
      line = Trimmed(line);
      if (line.empty() || line.front() == ';') continue;
      if (line.front() == '[') {
        ReadKey(line);
      } else {
        ReadValue(line);
      }
    }
    return std::move(m_tree);
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const { throw RegistryTextError(m_line, what); }

  bool NextLine(std::string_view& line) {
    if (m_rest.empty()) {
      m_line += m_line == 0 ? 1 : 0;
      return false;
    }
    ++m_line;
    const std::size_t end = m_rest.find('\n');
    line = m_rest.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    m_rest.remove_prefix(end == std::string_view::npos ? m_rest.size() : end + 1);
    return true;
  }

  std::wstring Decoded(std::string_view bytes) const {
    std::wstring text = FromUtf8(bytes);
    if (!IsAllowedName(text)) Fail("a text that is not UTF-8, or holds control characters");
    return text;
  }

  void ReadKey(std::string_view line) {
    if (line.back() != ']' || line.size() < 3) Fail("a key without its closing bracket");
    std::vector<std::wstring> path = SplitKeyPath(Decoded(line.substr(1, line.size() - 2)));
    if (path.empty() || FoldName(path.front()) != m_rootName) Fail("a key of another root");
    if (path.size() > kDeepestKey) Fail("a key below too many others");
    path.erase(path.begin());
    m_key = &m_tree.Make(path);
  }

  void ReadValue(std::string_view line) {
    if (m_key == nullptr) Fail("a value outside any key");
    RegistryValue value;
    if (line.front() == '@') {
      line.remove_prefix(1);
    } else if (line.front() == '"') {
      value.name = ReadQuoted(line);
    } else {
      Fail("neither a key nor a value");
    }
    line = Trimmed(line);
    if (!line.starts_with('=')) Fail("a value without =");
    ReadData(Trimmed(line.substr(1)), value);
    if (m_key->values.contains(FoldName(value.name))) Fail("a value that the key has already");
    m_key->Set(std::move(value));
  }

  // Reads a quoted text at the start of `line` and cuts it off.
  std::wstring ReadQuoted(std::string_view& line) const {
    std::string bytes;
    for (std::size_t i = 1; i < line.size(); ++i) {
      if (line[i] == '"') {
        line.remove_prefix(i + 1);
        return Decoded(bytes);
      }
      if (line[i] == '\\' && ++i == line.size()) break;
      bytes += line[i];
    }
    Fail("a text without its closing quote");
  }

  void ReadData(std::string_view text, RegistryValue& value) {
    if (text.starts_with('"')) {
      const std::wstring content = ReadQuoted(text);
      if (!Trimmed(text).empty()) Fail("something after the text");
      value.type = REG_SZ;
      const auto* bytes = reinterpret_cast<const BYTE*>(content.c_str());
      value.data.assign(bytes, bytes + (content.size() + 1) * sizeof(wchar_t));
    } else if (text.starts_with("dword:")) {
      const DWORD number = Number<DWORD>(text.substr(6));
      value.type = REG_DWORD;
      value.data.resize(sizeof(number));
      std::memcpy(value.data.data(), &number, sizeof(number));
    } else if (text.starts_with("hex")) {
      text.remove_prefix(3);
      value.type = REG_BINARY;
      if (text.starts_with('(')) {
        const std::size_t end = text.find(')');
        if (end == std::string_view::npos) Fail("a type without its closing bracket");
        value.type = Number<DWORD>(text.substr(1, end - 1));
        text.remove_prefix(end + 1);
      }
      if (!text.starts_with(':')) Fail("bytes without :");
      ReadBytes(text.substr(1), value.data);
    } else {
      Fail("data of an unknown kind");
    }
  }

  // Reads "01,02,\" and the lines that go on with it.
  void ReadBytes(std::string_view text, std::vector<BYTE>& data) {
    for (;;) {
      text = Trimmed(text);
      if (text.ends_with('\\')) {
        AppendBytes(Trimmed(text.substr(0, text.size() - 1)), true, data);
        if (!NextLine(text)) Fail("the file ends within a value");
      } else {
        AppendBytes(text, false, data);
        return;
      }
    }
  }

  void AppendBytes(std::string_view text, bool goesOn, std::vector<BYTE>& data) const {
    if (goesOn && text.ends_with(',')) {
      text.remove_suffix(1);
    } else if (text.empty() && data.empty() && !goesOn) {
      return;
    }
    for (;;) {
      const std::size_t end = text.find(',');
      data.push_back(Number<BYTE>(Trimmed(text.substr(0, end))));
      if (end == std::string_view::npos) return;
      text.remove_prefix(end + 1);
    }
  }

  template <typename Unsigned>
  Unsigned Number(std::string_view digits) const {
    Unsigned number = 0;
    const char* const last = digits.data() + digits.size();
    const auto [end, error] = std::from_chars(digits.data(), last, number, 16);
    if (error != std::errc() || end != last) Fail("a number that cannot be read");
    return number;
  }

  std::string_view m_rest;
  std::wstring m_rootName;
  std::size_t m_line = 0;
  RegistryTree m_tree;
  RegistryTree* m_key = nullptr;
};

}  // namespace

RegistryTree ReadRegistryFileText(std::string_view text, std::wstring_view rootName) {
  return Reader(text, rootName).Read();
}

std::string WriteRegistryFileText(const RegistryTree& tree, std::wstring_view rootName) {
  std::string out(kHeader);
  out += '\n';
  if (!tree.values.empty() || !tree.keys.empty()) WriteKey(out, tree, std::wstring(rootName));
  return out;
}

}  // namespace cvars::platform
