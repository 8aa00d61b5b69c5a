#pragma once

// Everything a client compiles against.

// Value types, result codes and enumerations.
#include "BasicTypes.h"
#include "Bstr.h"
#include "CvarEnums.h"
#include "Guid.h"
#include "ResultCodes.h"
#include "SafeArray.h"
#include "Variant.h"

// Owning wrappers.
#include "CComBSTR.h"
#include "CComPtr.h"
#include "CComSafeArray.h"
#include "CComVariant.h"
#include "CVorComBSTR.h"

// Interfaces.
#include "CvarBag.h"
#include "IVorCvar.h"
#include "IVorCvarDouble.h"
#include "IVorCvarEventSink.h"
#include "IVorPhysicalUnit.h"
#include "Unknown.h"
