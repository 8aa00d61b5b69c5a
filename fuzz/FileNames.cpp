// File names: a value taken by a full file name is made of its parts again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "CCvarFileName.h"
#include "CvarObject.h"
#include "WideText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr const wchar_t* kFormats[] = {L"filename", L"path", L"fullfilename", L""};
  if (size == 0) return 0;
  const std::wstring text = cvars::fuzz::WideText(data + 1, size - 1);
  const auto cvar = CvarObject<CCvarFileName>::Create();
  (void)cvar->put_AdaptedValueFormat(kFormats[data[0] % 4]);
  (void)cvar->put_DirectoryOnly((data[0] >> 2) & 1);
  (void)cvar->SetRequestedValue(text.c_str());
  CComBSTR first;
  if (cvar->GetRequestedValue(&first) != S_OK) std::abort();
  // What the parts make is a request that changes nothing.
  CComBSTR path;
  CComBSTR fileName;
  if (cvar->get_PathValue(&path) != S_OK || cvar->get_FileNameValue(&fileName) != S_OK ||
      cvar->put_PathValue(path) != S_OK || cvar->put_FileNameValue(fileName) != S_OK) {
    std::abort();
  }
  CComBSTR second;
  if (cvar->GetRequestedValue(&second) != S_OK || !(first == second)) std::abort();
  CComBSTR other;
  (void)cvar->get_FullFileNameValue(&other);
  (void)cvar->GetExtension(&other);
  CComVariant value;
  (void)cvar->get_Value(&value);
  return 0;
}
