#pragma once

#include <span>

#include "Cvars.h"

namespace cvars::model {

/// What makes a double cvar.
struct DoubleRow {
  const wchar_t* name;  ///< "Trigger Level|trig level"
  double defaultValue;
  double min;
  double max;
  double grain;  ///< a step, or when negative a number of significant digits
  const wchar_t* unit;
};

/// Makes the cvar of a row.
CComPtr<CvarObject<CCvarDouble>> MakeDoubleCvar(const DoubleRow& row);

/// Makes the cvars of the rows and adds them to the bag.
void AddDoubleCvars(CCvarBag& bag, std::span<const DoubleRow> rows);

}  // namespace cvars::model
