#include "instrument/model/DoubleCvars.h"

#include <stdexcept>

#include "Cvars.h"

namespace cvars::model {

CComPtr<CvarObject<CCvarDouble>> MakeDoubleCvar(const DoubleRow& row) {
  CComPtr<CvarObject<CCvarDouble>> cvar = CvarObject<CCvarDouble>::Create();
  cvar->Initialize(row.name, row.defaultValue, row.min, row.max, row.grain, row.unit, CVARFLAGS(0),
                   L"", 0, REPLICATE_VALUE | REPLICATE_REQUESTED);
  return cvar;
}

void AddDoubleCvars(CCvarBag& bag, std::span<const DoubleRow> rows) {
  for (const DoubleRow& row : rows) {
    if (bag.Add(MakeDoubleCvar(row)) != S_OK)
      throw std::logic_error("a cvar does not fit into its bag");
  }
}

}  // namespace cvars::model
