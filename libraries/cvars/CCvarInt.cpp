#include "CCvarInt.h"

#include "IntegerCvarMembers.h"

template class IVorCvarImpl<CCvarInt, IVorCvarInt, int>;
template class cvars::NumericCvar<CCvarInt, IVorCvarInt, IVorCvarInt, int>;
template class cvars::IntegerCvar<CCvarInt, IVorCvarInt, int>;
