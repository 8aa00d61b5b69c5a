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
#include "IStream.h"
#include "IVorCvar.h"
#include "IVorCvarAction.h"
#include "IVorCvarBitPattern.h"
#include "IVorCvarBool.h"
#include "IVorCvarColor.h"
#include "IVorCvarDouble.h"
#include "IVorCvarDoubleLockstep.h"
#include "IVorCvarEnum.h"
#include "IVorCvarEventSink.h"
#include "IVorCvarInt.h"
#include "IVorCvarLongInt.h"
#include "IVorCvarRegister.h"
#include "IVorPhysicalUnit.h"
#include "IVorProbe.h"
#include "IVorResult.h"
#include "IVorResultProcessorOutputPin.h"
#include "Unknown.h"

// The platform.
#include "platform/Bitmap.h"
#include "platform/Components.h"
#include "platform/FaultGuard.h"
#include "platform/HostPath.h"
#include "platform/LastError.h"
#include "platform/MessageBox.h"
#include "platform/MessageBoxPresenter.h"
#include "platform/Modules.h"
#include "platform/NamedMutex.h"
#include "platform/Registry.h"
#include "platform/Volumes.h"

// Interfaces of outside components.
#include "IVorAsynchronousCvarNotifier.h"
#include "IVorEventLog.h"
#include "IVorEventLogMgr.h"
#include "IVorMessageBox.h"
#include "IVorPhysicalUnit.h"
#include "IVorRegExp.h"
#include "IVorTattlerClient.h"

// Cvar classes.
#include "CCvarAction.h"
#include "CCvarBitPattern.h"
#include "CCvarBool.h"
#include "CCvarBoolToFineGrainOn.h"
#include "CCvarColor.h"
#include "CCvarDouble.h"
#include "CCvarDoubleIndirect.h"
#include "CCvarDoubleLockstep.h"
#include "CCvarDoubleSet.h"
#include "CCvarEnum.h"
#include "CCvarFileName.h"
#include "CCvarImage.h"
#include "CCvarInt.h"
#include "CCvarIntSet.h"
#include "CCvarLongInt.h"
#include "CCvarObject.h"
#include "CCvarLongIntSet.h"
#include "CCvarObjectName.h"
#include "CCvarRegister.h"
#include "CCvarSafeArray.h"
#include "CCvarString.h"
#include "CvarImpl.h"

// Diagnostics.
#include "CDLLVersions.h"
#include "DeveloperEventLog.h"
#include "DeveloperEvents.h"
#include "EventLogClient.h"
#include "MiniDumpWriter.h"
#include "ProcessStatistics.h"
#include "TattlerClient.h"

// Client kit.
#include "CCvarBag.h"
#include "CvarObject.h"
