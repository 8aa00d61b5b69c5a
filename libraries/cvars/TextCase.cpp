#include "TextCase.h"

#include <algorithm>

namespace cvars {

std::wstring UpperCased(std::wstring_view text) {
  std::wstring upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), FoldedCharacter);
  return upper;
}

bool SameTextAnyCase(std::wstring_view left, std::wstring_view right) noexcept {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](wchar_t a, wchar_t b) {
    return a == b || FoldedCharacter(a) == FoldedCharacter(b);
  });
}

}  // namespace cvars
