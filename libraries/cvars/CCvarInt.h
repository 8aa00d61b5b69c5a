#pragma once

#include "IVorCvarInt.h"
#include "IntegerCvar.h"

/// A setting that is a 32-bit integer: a request is clamped to [min, max] and rounded to the grain.
class CVARS_API CCvarInt : public cvars::IntegerCvar<CCvarInt, IVorCvarInt, int> {
 public:
  static constexpr const wchar_t* kTypeName = L"Integer";

 protected:
  CCvarInt() = default;
  ~CCvarInt() = default;
};

extern template class IVorCvarImpl<CCvarInt, IVorCvarInt, int>;
extern template class cvars::NumericCvar<CCvarInt, IVorCvarInt, IVorCvarInt, int>;
extern template class cvars::IntegerCvar<CCvarInt, IVorCvarInt, int>;
