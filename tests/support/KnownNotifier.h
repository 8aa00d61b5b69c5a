#pragma once

#include <atomic>

#include "CComPtr.h"
#include "IVorAsynchronousCvarNotifier.h"
#include "platform/Components.h"

namespace cvars::test {

/// Gives out one object for every creation.
class SameObjectFactory final : public IClassFactory {
 public:
  /// @param object   what is given out; null makes every creation fail.
  /// @param failure  with what it fails.
  static CComPtr<IClassFactory> Create(IUnknown* object, HRESULT failure = E_FAIL) {
    CComPtr<IClassFactory> factory;
    factory.Attach(new SameObjectFactory(object, failure));
    return factory;
  }

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }
  HRESULT CreateInstance(IUnknown*, REFIID iid, void** object) override {
    if (m_object != nullptr) return m_object->QueryInterface(iid, object);
    *object = nullptr;
    return m_failure;
  }
  HRESULT LockServer(int) override { return S_OK; }

 private:
  SameObjectFactory(IUnknown* object, HRESULT failure) : m_object(object), m_failure(failure) {}
  ~SameObjectFactory() = default;

  const CComPtr<IUnknown> m_object;
  const HRESULT m_failure;
  std::atomic<ULONG> m_references{1};
};

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
