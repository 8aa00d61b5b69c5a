#pragma once

#include "IVorCvarLongInt.h"
#include "IntegerCvar.h"

/// A setting that is a 64-bit integer: a request is clamped to [min, max] and rounded to the grain.
class CVARS_API CCvarLongInt
    : public cvars::IntegerCvar<CCvarLongInt, IVorCvarLongInt, std::int64_t> {
 public:
  static constexpr const wchar_t* kTypeName = L"Long Integer";

 protected:
  CCvarLongInt() = default;
  ~CCvarLongInt() = default;
};

extern template class IVorCvarImpl<CCvarLongInt, IVorCvarLongInt, std::int64_t>;
extern template class cvars::NumericCvar<CCvarLongInt, IVorCvarLongInt, IVorCvarLongInt,
                                         std::int64_t>;
extern template class cvars::IntegerCvar<CCvarLongInt, IVorCvarLongInt, std::int64_t>;
