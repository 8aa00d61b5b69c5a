#include "CCvarIntSet.h"

template class cvars::ValueSetCvar<CCvarInt>;
template class cvars::IntegerSetCvar<CCvarInt>;
