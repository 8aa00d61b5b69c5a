#pragma once

#include "Unknown.h"

/// {4E9A1C66-D2B7-4F05-A3C8-90B15E7F2D48}
inline constexpr IID IID_IVorProbe = {
    0x4E9A1C66, 0xD2B7, 0x4F05, {0xA3, 0xC8, 0x90, 0xB1, 0x5E, 0x7F, 0x2D, 0x48}};

/// A probe on an input of the instrument.
///
/// The application gives it its operations; the library stores such objects and hands them back.
class CVARS_API IVorProbe : public IUnknown {
 protected:
  ~IVorProbe() = default;
};

template <>
struct cvars::InterfaceId<IVorProbe> {
  static constexpr IID value = IID_IVorProbe;
};
