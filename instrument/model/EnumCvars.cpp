#include "instrument/model/EnumCvars.h"

#include "Cvars.h"

namespace cvars::model {

void AddEnumCvars(CCvarBag& bag, std::span<const EnumRow> rows) {
  for (const EnumRow& row : rows) {
    const auto cvar = CvarObject<CCvarEnum>::Create();
    cvar->Initialize(row.name, row.values, row.defaultIndex, CVARFLAG_WRAPPING, nullptr, 0,
                     REPLICATE_VALUE | REPLICATE_REQUESTED, 0);
    (void)bag.Add(cvar);  // a new cvar has no parent yet
  }
}

}  // namespace cvars::model
