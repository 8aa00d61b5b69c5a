#pragma once

#include "CCvarLongInt.h"
#include "IntegerSetCvar.h"

/// A 64-bit integer that takes one of a set of values.
class CVARS_API CCvarLongIntSet : public cvars::IntegerSetCvar<CCvarLongInt> {
 protected:
  CCvarLongIntSet() = default;
  ~CCvarLongIntSet() = default;
};

extern template class cvars::ValueSetCvar<CCvarLongInt>;
extern template class cvars::IntegerSetCvar<CCvarLongInt>;
