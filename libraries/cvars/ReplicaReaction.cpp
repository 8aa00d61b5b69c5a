#include <cstdio>

#include "CComBSTR.h"
#include "CComVariant.h"
#include "CvarCore.h"
#include "CvarText.h"
#include "DeveloperEvents.h"

namespace cvars {

// Told of a change of its source, a replica copies the flags, then the values, then the attributes
// that its replication flags name. A failed read of flags or attributes is reported and ends it;
// the code of the last value copy goes back to the source when it is a failure.
HRESULT CvarCore::CoreReactToSource(IVorCvar* source, NOTIFYTYPE what) {
  if (source == nullptr) return E_POINTER;
  const CVARREPLICATIONFLAGS copies = ReplicationFlags();
  IVorCvar* const self = GetIVorCvar();

  if ((copies & REPLICATE_FLAGS) != 0 && (what & NOTIFY_FLAGS) != 0) {
    long word = 0;
    const HRESULT read = source->get_Flags(&word);
    if (FAILED(read)) return ReportReplicaFailure(read, __LINE__);
    // A replica keeps its own forced public or private state.
    constexpr CVARFLAGS kForced = CVARFLAG_PRIVATE | CVARFLAG_PUBLIC;
    const auto theirs = static_cast<CVARFLAGS>(static_cast<std::uint32_t>(word));
    SetFlags(static_cast<long>((theirs & ~kForced) | (Flags() & kForced)));
  }

  HRESULT copied = S_OK;
  if ((copies & (REPLICATE_VALUE | REPLICATE_REQUESTED)) != 0 &&
      (what & (NOTIFY_VALUE | NOTIFY_REQUESTED)) != 0) {
    const bool lifted = HasFlag(CVARFLAG_READONLY) && (copies & REPLICATE_OVERRIDE_READONLY) != 0;
    if (lifted) SetReadOnly(0);
    if ((copies & REPLICATE_VALUE) != 0 && (what & NOTIFY_VALUE) != 0) {
      (void)UpdateAdaptedValueAndNotify();  // only what is copied decides the result
      if ((copies & REPLICATE_REQUESTED) == 0) {
        CComVariant value;
        copied = source->get_Value(&value);
        if (SUCCEEDED(copied)) copied = self->put_Value(value);
      }
    }
    if ((copies & REPLICATE_REQUESTED) != 0 && (what & NOTIFY_REQUESTED) != 0) {
      CComVariant value;
      copied = source->GetRequestedVariantValue(&value);
      if (SUCCEEDED(copied)) copied = self->put_Value(value);
    }
    if (lifted) SetReadOnly(1);
  }

  if ((what & NOTIFY_ATTRIBUTES) != 0) {
    if ((copies & REPLICATE_NAME) != 0) {
      CComBSTR name;
      const HRESULT read = source->get_Name(&name);
      if (FAILED(read)) return ReportReplicaFailure(read, __LINE__);
      SetName(name);
    }
    if ((copies & REPLICATE_HELPID) != 0) {
      unsigned int id = 0;
      const HRESULT read = source->get_HelpStringID(&id);
      if (FAILED(read)) return ReportReplicaFailure(read, __LINE__);
      m_helpStringId = id;
    }
    if ((copies & REPLICATE_GUIHINTS) != 0) {
      CComBSTR hints;
      const HRESULT read = source->GetGuiHints(&hints);
      if (FAILED(read)) return ReportReplicaFailure(read, __LINE__);
      SetGuiHints(hints);
    }
  }
  return FAILED(copied) ? copied : S_OK;
}

HRESULT CvarCore::ReportReplicaFailure(HRESULT result, int line) {
  wchar_t code[16];
  std::swprintf(code, std::size(code), L"%x", static_cast<unsigned int>(result));
  ReportDeveloperEvent(EventAtLine(GetIVorCvar(), code, line, L"shared/includes/CvarImpl"));
  return result;
}

}  // namespace cvars
