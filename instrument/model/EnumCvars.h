#pragma once

#include <span>

#include "CCvarBag.h"

namespace cvars::model {

/// What makes an enum cvar.
struct EnumRow {
  const wchar_t* name;    ///< "Trigger Mode|mode"
  const wchar_t* values;  ///< "screen|automation|remote" of each choice, separated by commas
  int defaultIndex;
};

/// Makes the cvars of the rows and adds them to the bag.
void AddEnumCvars(CCvarBag& bag, std::span<const EnumRow> rows);

}  // namespace cvars::model
