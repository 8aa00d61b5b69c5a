#pragma once

#include <atomic>
#include <system_error>

#include "CComPtr.h"
#include "Export.h"
#include "Unknown.h"

// What a loadable module of components is made of:
//
//   class Thermometer final : public Component<Offers<IThermometer, IID_IThermometer>> { ... };
//
//   HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
//     return cvars::platform::ClassObject<Thermometer>(CLSID_Thermometer, clsid, iid, object);
//   }
//
// built and registered by the CMake function cvars_add_component.

/// The way into a module of components: gives the factory of a class.
///
/// @retval E_POINTER                 object is null
/// @retval CLASS_E_CLASSNOTAVAILABLE the module does not make this class
extern "C" CVARS_API HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object);

namespace cvars::platform {

/// An interface together with its identifier.
template <class OfferedInterface, const IID& kOfferedIid>
struct Offers {
  using Interface = OfferedInterface;
  static constexpr const IID& kIid = kOfferedIid;
};

/// Counts references and answers QueryInterface for the interfaces it offers. Starts with one
/// reference, which belongs to its maker, and deletes itself with the last one.
template <class First, class... More>
class Component : public First::Interface, public More::Interface... {
 public:
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown) {
      *object = static_cast<IUnknown*>(static_cast<typename First::Interface*>(this));
    } else if (!Give<First>(iid, object)) {
      (void)(Give<More>(iid, object) || ...);  // *object tells
    }
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }
  ULONG Release() override {
    const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) delete this;
    return left;
  }

 protected:
  Component() = default;
  virtual ~Component() = default;

 private:
  template <class Offered>
  bool Give(REFIID iid, void** object) {
    if (!(iid == Offered::kIid)) return false;
    *object = static_cast<typename Offered::Interface*>(this);
    return true;
  }

  std::atomic<ULONG> m_references = 1;
};

/// Makes objects of one class by its constructor without arguments.
template <class Made>
class ClassFactory final : public Component<Offers<IClassFactory, IID_IClassFactory>> {
 public:
  HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    CComPtr<Made> made;
    try {
      made.Attach(new Made);
    } catch (const std::system_error&) {
      return E_FAIL;  // the system refused what the object needs: a thread, say
    }
    return made->QueryInterface(iid, object);
  }
  HRESULT LockServer(int) override { return S_OK; }  // modules stay loaded anyway
};

/// Answers a DllGetClassObject of a module that makes one class.
///
/// @param own  the class that the module makes.
template <class Made>
HRESULT ClassObject(REFCLSID own, REFCLSID wanted, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!(own == wanted)) return CLASS_E_CLASSNOTAVAILABLE;
  CComPtr<ClassFactory<Made>> factory;
  factory.Attach(new ClassFactory<Made>);
  return factory->QueryInterface(iid, object);
}

}  // namespace cvars::platform
