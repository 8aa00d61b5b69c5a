#pragma once

#include "Unknown.h"

/// {16C7B94A-E83D-4D52-9F20-B5A4D3E1708C}
inline constexpr IID IID_IVorResultProcessorOutputPin = {
    0x16C7B94A, 0xE83D, 0x4D52, {0x9F, 0x20, 0xB5, 0xA4, 0xD3, 0xE1, 0x70, 0x8C}};

/// An output of a result processor, from which others take its results.
///
/// The application gives it its operations; the library stores such objects and hands them back.
class CVARS_API IVorResultProcessorOutputPin : public IUnknown {
 protected:
  ~IVorResultProcessorOutputPin() = default;
};

template <>
struct cvars::InterfaceId<IVorResultProcessorOutputPin> {
  static constexpr IID value = IID_IVorResultProcessorOutputPin;
};
