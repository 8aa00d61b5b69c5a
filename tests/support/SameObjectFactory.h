#pragma once

#include "CComPtr.h"
#include "platform/ComponentModule.h"

namespace cvars::test {

/// Gives out one object for every creation.
class SameObjectFactory final
    : public platform::Component<platform::Offers<IClassFactory, IID_IClassFactory>> {
 public:
  /// @param object   what is given out; null makes every creation fail.
  /// @param failure  with what it fails.
  static CComPtr<IClassFactory> Create(IUnknown* object, HRESULT failure = E_FAIL) {
    CComPtr<IClassFactory> factory;
    factory.Attach(new SameObjectFactory(object, failure));
    return factory;
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
};

}  // namespace cvars::test
