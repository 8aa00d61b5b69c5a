#pragma once

#include "Unknown.h"

/// {83F5D0B2-1A6E-4C39-B7D4-2C08E6A9F571}
inline constexpr IID IID_IVorResult = {
    0x83F5D0B2, 0x1A6E, 0x4C39, {0xB7, 0xD4, 0x2C, 0x08, 0xE6, 0xA9, 0xF5, 0x71}};

/// A result of a measurement.
///
/// The application gives it its operations; the library stores such objects and hands them back.
class CVARS_API IVorResult : public IUnknown {
 protected:
  ~IVorResult() = default;
};

template <>
struct cvars::InterfaceId<IVorResult> {
  static constexpr IID value = IID_IVorResult;
};
