#pragma once

#include "CComPtr.h"
#include "IVorAsynchronousCvarNotifier.h"
#include "SameObjectFactory.h"
#include "platform/Components.h"

namespace cvars::test {

/// The notifier that the library uses in this process, for tests to drain. To be asked for before
/// the first asynchronous replication.
inline IVorAsynchronousCvarNotifier* KnownNotifier() {
  static const CComPtr<IVorAsynchronousCvarNotifier> notifier = [] {
    CComPtr<IVorAsynchronousCvarNotifier> made;
    DWORD cookie = 0;
    (void)CoInitialize(nullptr);
    if (FAILED(platform::CreateComponent(L"Vortana.AsynchronousCvarNotifier",
                                         IID_IVorAsynchronousCvarNotifier,
                                         reinterpret_cast<void**>(&made))) ||
        FAILED(CoRegisterClassObject(CLSID_AsynchronousCvarNotifier,
                                     SameObjectFactory::Create(made), CLSCTX_INPROC_SERVER,
                                     REGCLS_MULTIPLEUSE, &cookie))) {
      made.Release();
    }
    return made;
  }();
  return notifier;
}

}  // namespace cvars::test
