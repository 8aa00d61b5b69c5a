#include "CCvarString.h"

#include "CvarBoundedTextImplMembers.h"

template class IVorCvarImpl<CCvarString, IVorCvarString, CComBSTR>;
template class CvarTextImpl<CCvarString, IVorCvarString>;
template class CvarBoundedTextImpl<CCvarString, IVorCvarString>;

CCvarString::CCvarString() : CvarBoundedTextImpl(16) {}
