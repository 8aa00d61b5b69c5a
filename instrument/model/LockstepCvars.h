#pragma once

#include "CCvarBag.h"
#include "CvarEnums.h"

namespace cvars::model {

/// What makes a cvar that moves in steps per decade.
struct LockstepRow {
  const wchar_t* name;  ///< "Scale"
  double defaultValue;
  double min;
  double max;
  LOCKSTEP lockstep;
  const wchar_t* unit;
  bool fineGrain;  ///< whether finer values can be switched on
};

/// Makes the cvar of the row and adds it to the bag.
void AddLockstepCvar(CCvarBag& bag, const LockstepRow& row);

}  // namespace cvars::model
