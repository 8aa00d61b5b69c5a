#include "instrument/model/LockstepCvars.h"

#include <stdexcept>

#include "Cvars.h"

namespace cvars::model {

void AddLockstepCvar(CCvarBag& bag, const LockstepRow& row) {
  const auto cvar = CvarObject<CCvarDoubleLockstep>::Create();
  cvar->Initialize(row.name, row.defaultValue, row.min, row.max, row.lockstep, row.unit,
                   row.fineGrain ? 1 : 0, CVARFLAG_COMPACT, nullptr, 0,
                   REPLICATE_VALUE | REPLICATE_REQUESTED);
  if (bag.Add(cvar) != S_OK) throw std::logic_error("a cvar does not fit into its bag");
}

}  // namespace cvars::model
