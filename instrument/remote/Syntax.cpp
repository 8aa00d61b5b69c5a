#include "instrument/remote/Syntax.h"

#include <cstddef>

namespace cvars::remote {

bool IsMnemonic(std::string_view mnemonic, std::string_view text) noexcept {
  std::size_t shortLength = 0;
  while (shortLength < mnemonic.size() && mnemonic[shortLength] == ToUpper(mnemonic[shortLength])) {
    ++shortLength;
  }
  if (text.size() != mnemonic.size() && text.size() != shortLength) return false;
  for (std::size_t index = 0; index < text.size(); ++index) {
    if (ToUpper(mnemonic[index]) != ToUpper(text[index])) return false;
  }
  return true;
}

}  // namespace cvars::remote
