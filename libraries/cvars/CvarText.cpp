#include "CvarText.h"

namespace cvars {

HRESULT CopyOut(std::wstring_view text, BSTR* out) {
  if (out == nullptr) return E_POINTER;
  *out = text.size() > 0xFFFFFFFFu
             ? nullptr
             : SysAllocStringLen(text.empty() ? L"" : text.data(), static_cast<UINT>(text.size()));
  return *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

}  // namespace cvars
