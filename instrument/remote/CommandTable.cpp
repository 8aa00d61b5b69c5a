#include "instrument/remote/CommandTable.h"

#include <algorithm>
#include <utility>

#include "instrument/remote/Syntax.h"

namespace cvars::remote {
namespace {

std::string Upper(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), ToUpper);
  return upper;
}

std::string ShortForm(std::string_view mnemonic) {
  std::string text;
  for (const char character : mnemonic) {
    if (character != ToUpper(character)) break;
    text.push_back(character);
  }
  return text;
}

/// Calls `visit` with each node of a header: what stands between the colons.
template <typename Visit>
void ForEachNode(std::string_view header, Visit visit) {
  for (;;) {
    const std::size_t end = header.find(':');
    visit(header.substr(0, end));
    if (end == std::string_view::npos) return;
    header.remove_prefix(end + 1);
  }
}

std::string_view WithoutSuffix(std::string_view node) noexcept {
  while (!node.empty() && IsDigit(node.back())) node.remove_suffix(1);
  return node;
}

/// A header with the numeric suffix of every node taken off, or with all of them written out.
enum class SuffixForm { kNone, kExplicit };
std::string WithSuffixes(std::string_view header, SuffixForm form) {
  std::string text;
  bool isFirst = true;
  ForEachNode(header, [&](std::string_view node) {
    if (!isFirst) text.push_back(':');
    isFirst = false;
    const std::string_view stem = WithoutSuffix(node);
    text += form == SuffixForm::kNone ? stem : node;
    if (form == SuffixForm::kExplicit && stem.size() == node.size()) text.push_back('1');
  });
  return text;
}

}  // namespace

std::vector<std::string> HeaderSpellings(std::string_view pattern) {
  std::vector<std::string> spellings{std::string()};
  while (!pattern.empty()) {
    const bool isOptional = pattern.front() == '[';
    if (isOptional) pattern.remove_prefix(1);
    if (!pattern.empty() && pattern.front() == ':') pattern.remove_prefix(1);
    const std::size_t length = std::min(pattern.find_first_of("[:]"), pattern.size());
    const std::string_view mnemonic = pattern.substr(0, length);
    pattern.remove_prefix(length);
    if (isOptional && !pattern.empty() && pattern.front() == ']') pattern.remove_prefix(1);

    std::vector<std::string> forms{Upper(mnemonic)};
    if (std::string shortForm = ShortForm(mnemonic); shortForm != forms.front()) {
      forms.push_back(std::move(shortForm));
    }
    std::vector<std::string> longer = isOptional ? spellings : std::vector<std::string>{};
    for (const std::string& start : spellings) {
      for (const std::string& form : forms) {
        longer.push_back(start.empty() ? form : start + ':' + form);
      }
    }
    spellings = std::move(longer);
  }
  std::erase(spellings, std::string());
  return spellings;
}

void CommandTable::Add(std::string_view pattern, std::shared_ptr<const Command> command) {
  for (std::string& spelling : HeaderSpellings(pattern)) Insert(std::move(spelling), command);
}

bool CommandTable::AddVerbatim(std::string_view header, std::shared_ptr<const Command> command) {
  return Insert(Upper(header), command);
}

bool CommandTable::Insert(std::string spelling, const std::shared_ptr<const Command>& command) {
  const auto [place, isNew] = m_commands.try_emplace(std::move(spelling), command);
  if (isNew) m_bySuffixless[WithSuffixes(place->first, SuffixForm::kNone)].push_back(place->first);
  return isNew;
}

ScpiError CommandTable::Find(std::string_view header, const Command*& command) const {
  if (const auto found = m_commands.find(header); found != m_commands.end()) {
    command = found->second.get();
    return ScpiError::kNone;
  }
  command = nullptr;
  const auto related = m_bySuffixless.find(WithSuffixes(header, SuffixForm::kNone));
  if (related == m_bySuffixless.end()) return ScpiError::kUndefinedHeader;
  const std::string wanted = WithSuffixes(header, SuffixForm::kExplicit);
  for (const std::string& spelling : related->second) {
    if (WithSuffixes(spelling, SuffixForm::kExplicit) != wanted) continue;
    command = m_commands.find(spelling)->second.get();
    return ScpiError::kNone;
  }
  return ScpiError::kHeaderSuffixOutOfRange;
}

}  // namespace cvars::remote
