#pragma once

#include <string>
#include <string_view>

#include "Bstr.h"
#include "Export.h"

namespace cvars {

/// The two names of a cvar: one for the screen and scripts, one for remote commands.
///
/// Set from one text by the name rule: "Trigger Level|trig level" gives the name "Trigger Level"
/// and the remote name "TRIG_LEVEL"; without "|" the text is both. The remote name is upper-cased
/// and has "_" for blanks. Only the source texts are kept, one byte a character where that does.
class CVARS_API CvarNames {
 public:
  /// Starts as "(unnamedCvar)".
  CvarNames() noexcept;
  ~CvarNames();
  CvarNames(const CvarNames&) = delete;
  CvarNames& operator=(const CvarNames&) = delete;

  /// Applies the name rule. @param text  copied; the empty text gives two empty names.
  void Set(std::wstring_view text);

  bool Empty() const noexcept;
  std::wstring Name() const;
  /// @param name  caller frees. @retval E_OUTOFMEMORY
  HRESULT CopyName(BSTR* name) const;
  HRESULT CopyRemoteName(BSTR* name) const;

 private:
  struct Block;
  static const Block kUnnamed;
  void Forget() noexcept;

  const Block* m_block;  // owned unless it is kUnnamed; null when both names are empty
};

}  // namespace cvars
