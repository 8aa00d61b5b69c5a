#pragma once

#include "Unknown.h"
#include "Variant.h"

class IVorCvar;

/// {B4C49663-8BB0-4472-8A41-E7AD9CCAD170}
inline constexpr IID IID_CvarBag = {
    0xB4C49663, 0x8BB0, 0x4472, {0x8A, 0x41, 0xE7, 0xAD, 0x9C, 0xCA, 0xD1, 0x70}};

/// A named container of cvars. Its name is the property "Name", read by name through IDispatch.
class CVARS_API CvarBag : public IDispatch {
 public:
  /// The module that made the bag, whose resources hold help texts, icons and bitmaps.
  virtual HRESULT GetModuleInstanceHandle(HINSTANCE* module) = 0;  // 7

  /// Finds a cvar by key: a text is a name (screen or remote, any case), a number a position from
  /// 0.
  /// @param cvar  receives the cvar with one reference; null on failure.
  /// @retval E_POINTER        cvar is null
  /// @retval DISP_E_BADINDEX  no such cvar
  virtual HRESULT get_Item(VARIANT key, IVorCvar** cvar) = 0;  // 8

  virtual HRESULT get_Count(long* count) = 0;  // 9

 protected:
  ~CvarBag() = default;
};

template <>
struct cvars::InterfaceId<CvarBag> {
  static constexpr IID value = IID_CvarBag;
};
