#include <cstdlib>
#include <cwchar>
#include <string>
#include <string_view>

#include "ClassRegistry.h"
#include "platform/Components.h"

namespace cvars::platform {
namespace {

// "{" 8 digits, then groups of 4, 4, 4 and 12 after dashes, "}".
constexpr std::wstring_view kShape = L"{########-####-####-####-############}";

int DigitValue(wchar_t digit) {
  if (digit >= L'0' && digit <= L'9') return digit - L'0';
  if (digit >= L'A' && digit <= L'F') return digit - L'A' + 10;
  if (digit >= L'a' && digit <= L'f') return digit - L'a' + 10;
  return -1;
}

bool ReadGuid(std::wstring_view text, GUID* guid) {
  if (text.size() != kShape.size()) return false;
  BYTE bytes[16] = {};
  std::size_t digits = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (kShape[i] != L'#') {
      if (text[i] != kShape[i]) return false;
      continue;
    }
    const int value = DigitValue(text[i]);
    if (value < 0) return false;
    bytes[digits / 2] = static_cast<BYTE>(bytes[digits / 2] * 16 + value);
    ++digits;
  }
  guid->Data1 = static_cast<std::uint32_t>(bytes[0]) << 24 |
                static_cast<std::uint32_t>(bytes[1]) << 16 |
                static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
  guid->Data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
  guid->Data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
  for (std::size_t i = 0; i < 8; ++i) guid->Data4[i] = bytes[8 + i];
  return true;
}

}  // namespace

std::wstring GuidText(REFGUID guid) {
  std::wstring text(kShape);
  std::uint64_t high =
      std::uint64_t{guid.Data1} << 32 | std::uint64_t{guid.Data2} << 16 | guid.Data3;
  std::uint64_t low = 0;
  for (const std::uint8_t byte : guid.Data4) low = low << 8 | byte;
  int digits = 0;
  for (std::size_t i = text.size(); i-- > 0;) {
    if (kShape[i] != L'#') continue;
    std::uint64_t& part = digits++ < 16 ? low : high;
    text[i] = L"0123456789ABCDEF"[part & 0xF];
    part >>= 4;
  }
  return text;
}

}  // namespace cvars::platform

using namespace cvars::platform;

int StringFromGUID2(REFGUID guid, wchar_t* text, int size) {
  const std::wstring written = GuidText(guid);
  const int needed = static_cast<int>(written.size()) + 1;
  if (text == nullptr || size < needed) return 0;
  std::wmemcpy(text, written.c_str(), written.size() + 1);
  return needed;
}

HRESULT CLSIDFromString(const wchar_t* text, CLSID* clsid) {
  if (clsid == nullptr) return E_INVALIDARG;
  *clsid = GUID_NULL;
  if (text == nullptr || ReadGuid(text, clsid)) return S_OK;
  return *text == L'{' ? CO_E_CLASSSTRING : CLSIDFromProgID(text, clsid);
}

HRESULT CLSIDFromProgID(const wchar_t* progId, CLSID* clsid) {
  if (clsid == nullptr) return E_INVALIDARG;
  *clsid = GUID_NULL;
  if (progId == nullptr) return E_INVALIDARG;
  const std::wstring text = ClassRegistryText({progId, L"CLSID"});
  return !text.empty() && ReadGuid(text, clsid) ? S_OK : CO_E_CLASSSTRING;
}

HRESULT ProgIDFromCLSID(REFCLSID clsid, wchar_t** progId) {
  if (progId == nullptr) return E_INVALIDARG;
  *progId = nullptr;
  const std::wstring text = ClassRegistryText({L"CLSID", GuidText(clsid), L"ProgID"});
  if (text.empty()) return REGDB_E_CLASSNOTREG;
  const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
  *progId = static_cast<wchar_t*>(CoTaskMemAlloc(bytes));
  if (*progId == nullptr) return E_OUTOFMEMORY;
  std::wmemcpy(*progId, text.c_str(), text.size() + 1);
  return S_OK;
}

void* CoTaskMemAlloc(std::size_t bytes) { return std::malloc(bytes); }

void CoTaskMemFree(void* memory) { std::free(memory); }
