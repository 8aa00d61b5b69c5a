#include "TextPieces.h"

namespace cvars {

std::vector<std::wstring_view> SplitText(std::wstring_view text, wchar_t separator) {
  std::vector<std::wstring_view> pieces;
  for (;;) {
    const std::size_t end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::wstring_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

}  // namespace cvars
