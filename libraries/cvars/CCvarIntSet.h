#pragma once

#include "CCvarInt.h"
#include "IntegerSetCvar.h"

/// A 32-bit integer that takes one of a set of values.
class CVARS_API CCvarIntSet : public cvars::IntegerSetCvar<CCvarInt> {
 protected:
  CCvarIntSet() = default;
  ~CCvarIntSet() = default;
};

extern template class cvars::ValueSetCvar<CCvarInt>;
extern template class cvars::IntegerSetCvar<CCvarInt>;
