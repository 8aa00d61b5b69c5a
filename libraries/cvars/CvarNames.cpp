#include "CvarNames.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace cvars {

// Two texts behind one header. Without a remote source the name is the source of both.
struct CvarNames::Block {
  std::uint32_t nameLength;
  std::uint32_t remoteLength;
  bool hasRemoteSource;
  bool wide;  // four bytes a character instead of one
  char texts[14];

  wchar_t At(std::size_t index) const noexcept {
    const char* const bytes = texts;  // longer texts go on behind the array
    if (!wide) return static_cast<unsigned char>(bytes[index]);
    wchar_t character = 0;
    std::memcpy(&character, bytes + index * sizeof(wchar_t), sizeof(character));
    return character;
  }

  void CopyName(wchar_t* out) const noexcept {
    for (std::size_t i = 0; i < nameLength; ++i) out[i] = At(i);
  }
  std::uint32_t RemoteLength() const noexcept {
    return hasRemoteSource ? remoteLength : nameLength;
  }
  void CopyRemoteName(wchar_t* out) const noexcept {
    const std::size_t from = hasRemoteSource ? nameLength : 0;
    for (std::size_t i = 0; i < RemoteLength(); ++i) {
      const wchar_t character = At(from + i);
      out[i] = character == L' ' ? L'_' : UpperCase(character);
    }
  }
};

constinit const CvarNames::Block CvarNames::kUnnamed = {13, 0, false, false, "(unnamedCvar)"};

CvarNames::CvarNames() noexcept : m_block(&kUnnamed) {}

CvarNames::~CvarNames() { Forget(); }

void CvarNames::Forget() noexcept {
  if (m_block != &kUnnamed) std::free(const_cast<Block*>(m_block));
  m_block = nullptr;
}

void CvarNames::Set(std::wstring_view text) {
  const std::size_t bar = text.find(L'|');
  const bool hasRemoteSource = bar != std::wstring_view::npos;
  const std::wstring_view name = text.substr(0, bar);
  const std::wstring_view remote = hasRemoteSource
                                       ? text.substr(bar + 1, text.find(L'|', bar + 1) - bar - 1)
                                       : std::wstring_view();
  if (name.empty() && remote.empty()) {
    Forget();
    return;
  }

  const auto isWide = [](wchar_t c) { return static_cast<std::uint32_t>(c) > 0xFF; };
  const bool wide = std::any_of(name.begin(), name.end(), isWide) ||
                    std::any_of(remote.begin(), remote.end(), isWide);
  const std::size_t bytes = (name.size() + remote.size()) * (wide ? sizeof(wchar_t) : 1);
  auto* block =
      static_cast<Block*>(std::malloc(std::max(sizeof(Block), offsetof(Block, texts) + bytes)));
  if (block == nullptr) throw std::bad_alloc();
  block->nameLength = static_cast<std::uint32_t>(name.size());
  block->remoteLength = static_cast<std::uint32_t>(remote.size());
  block->hasRemoteSource = hasRemoteSource;
  block->wide = wide;
  char* out = block->texts;
  for (const std::wstring_view piece : {name, remote}) {
    if (wide) {
      if (!piece.empty()) std::memcpy(out, piece.data(), piece.size() * sizeof(wchar_t));
      out += piece.size() * sizeof(wchar_t);
    } else {
      out = std::transform(piece.begin(), piece.end(), out,
                           [](wchar_t c) { return static_cast<char>(c); });
    }
  }
  Forget();
  m_block = block;
}

bool CvarNames::Empty() const noexcept { return m_block == nullptr || m_block->nameLength == 0; }

std::wstring CvarNames::Name() const {
  if (m_block == nullptr) return {};
  std::wstring name(m_block->nameLength, L'\0');
  m_block->CopyName(name.data());
  return name;
}

HRESULT CvarNames::CopyName(BSTR* name) const {
  *name = SysAllocStringLen(nullptr, m_block == nullptr ? 0 : m_block->nameLength);
  if (*name == nullptr) return E_OUTOFMEMORY;
  if (m_block != nullptr) m_block->CopyName(*name);
  return S_OK;
}

HRESULT CvarNames::CopyRemoteName(BSTR* name) const {
  *name = SysAllocStringLen(nullptr, m_block == nullptr ? 0 : m_block->RemoteLength());
  if (*name == nullptr) return E_OUTOFMEMORY;
  if (m_block != nullptr) m_block->CopyRemoteName(*name);
  return S_OK;
}

}  // namespace cvars
