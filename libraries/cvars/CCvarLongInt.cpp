#include "CCvarLongInt.h"

#include "IntegerCvarMembers.h"

template class IVorCvarImpl<CCvarLongInt, IVorCvarLongInt, std::int64_t>;
template class cvars::NumericCvar<CCvarLongInt, IVorCvarLongInt, IVorCvarLongInt, std::int64_t>;
template class cvars::IntegerCvar<CCvarLongInt, IVorCvarLongInt, std::int64_t>;
