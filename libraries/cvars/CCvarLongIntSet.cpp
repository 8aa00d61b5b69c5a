#include "CCvarLongIntSet.h"

template class cvars::ValueSetCvar<CCvarLongInt>;
template class cvars::IntegerSetCvar<CCvarLongInt>;
