#include "Bstr.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {

// What stands before the characters: eight bytes, so that they stay aligned; the second four hold
// the length in bytes.
constexpr std::size_t kPrefixBytes = 8;
constexpr UINT kLargestLength = 1u << 30;

char* BlockOf(const wchar_t* text) {
  return reinterpret_cast<char*>(const_cast<wchar_t*>(text)) - kPrefixBytes;
}

BSTR AllocateBytes(std::size_t bytes) {
  const std::size_t padded = (bytes + sizeof(wchar_t) - 1) / sizeof(wchar_t) * sizeof(wchar_t);
  auto* block = static_cast<char*>(std::malloc(kPrefixBytes + padded + sizeof(wchar_t)));
  if (block == nullptr) return nullptr;
  const auto length = static_cast<std::uint32_t>(bytes);
  std::memcpy(block + sizeof(std::uint32_t), &length, sizeof(length));
  std::memset(block + kPrefixBytes + padded, 0, sizeof(wchar_t));
  if (padded != bytes) std::memset(block + kPrefixBytes + bytes, 0, padded - bytes);
  return reinterpret_cast<BSTR>(block + kPrefixBytes);
}

BSTR Allocate(const void* source, std::size_t bytes) {
  BSTR copy = AllocateBytes(bytes);
  if (copy == nullptr) return nullptr;
  if (source != nullptr) {
    std::memcpy(copy, source, bytes);
  } else {
    std::memset(copy, 0, bytes);
  }
  return copy;
}

}  // namespace

BSTR SysAllocStringLen(const wchar_t* text, UINT length) {
  if (length >= kLargestLength) return nullptr;
  return Allocate(text, std::size_t{length} * sizeof(wchar_t));
}

BSTR SysAllocString(const wchar_t* text) {
  if (text == nullptr) return nullptr;
  const std::size_t length = std::wcslen(text);
  if (length >= kLargestLength) return nullptr;
  return SysAllocStringLen(text, static_cast<UINT>(length));
}

BSTR SysAllocStringByteLen(const char* bytes, UINT byteLength) {
  return Allocate(bytes, byteLength);
}

int SysReAllocStringLen(BSTR* text, const wchar_t* source, UINT length) {
  if (text == nullptr) return 0;
  BSTR copy = SysAllocStringLen(source, length);
  if (copy == nullptr) return 0;
  SysFreeString(*text);
  *text = copy;
  return 1;
}

int SysReAllocString(BSTR* text, const wchar_t* source) {
  if (text == nullptr) return 0;
  if (source == nullptr) {
    SysFreeString(*text);
    *text = nullptr;
    return 1;
  }
  const std::size_t length = std::wcslen(source);
  if (length >= kLargestLength) return 0;
  return SysReAllocStringLen(text, source, static_cast<UINT>(length));
}

void SysFreeString(BSTR text) {
  if (text != nullptr) std::free(BlockOf(text));
}

UINT SysStringByteLen(const wchar_t* text) {
  if (text == nullptr) return 0;
  std::uint32_t length = 0;
  std::memcpy(&length, BlockOf(text) + sizeof(std::uint32_t), sizeof(length));
  return length;
}

UINT SysStringLen(const wchar_t* text) {
  return SysStringByteLen(text) / static_cast<UINT>(sizeof(wchar_t));
}

HRESULT VarBstrCmp(BSTR left, BSTR right, LCID /*locale: the order is by code point*/,
                   ULONG flags) {
  const UINT leftLength = SysStringLen(left);
  const UINT rightLength = SysStringLen(right);
  const UINT common = leftLength < rightLength ? leftLength : rightLength;
  const bool ignoreCase = (flags & NORM_IGNORECASE) != 0;
  for (UINT i = 0; i < common; ++i) {
    const wchar_t a = ignoreCase ? cvars::UpperCase(left[i]) : left[i];
    const wchar_t b = ignoreCase ? cvars::UpperCase(right[i]) : right[i];
    if (a != b) return a < b ? VARCMP_LT : VARCMP_GT;
  }
  if (leftLength == rightLength) return VARCMP_EQ;
  return leftLength < rightLength ? VARCMP_LT : VARCMP_GT;
}

HRESULT VarBstrCat(BSTR left, BSTR right, BSTR* result) {
  if (result == nullptr) return E_INVALIDARG;
  const std::size_t leftBytes = SysStringByteLen(left);
  const std::size_t rightBytes = SysStringByteLen(right);
  if (leftBytes + rightBytes >= std::size_t{kLargestLength} * sizeof(wchar_t)) return E_OUTOFMEMORY;
  BSTR joined = AllocateBytes(leftBytes + rightBytes);
  if (joined == nullptr) return E_OUTOFMEMORY;
  auto* target = reinterpret_cast<char*>(joined);
  if (leftBytes != 0) std::memcpy(target, left, leftBytes);
  if (rightBytes != 0) std::memcpy(target + leftBytes, right, rightBytes);
  *result = joined;
  return S_OK;
}
