#include "platform/Components.h"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "CComPtr.h"
#include "ClassRegistry.h"
#include "platform/HostPath.h"
#include "registry/RegistryRoots.h"

namespace cvars::platform {
namespace {

// The calling thread's initialisations.
struct Apartment {
  ULONG count = 0;
  DWORD kind = COINIT_MULTITHREADED;
};
thread_local Apartment apartment;

// The class objects that the process offers itself.
class OfferedClasses {
 public:
  static OfferedClasses& Instance() {
    static auto* const classes = new OfferedClasses;
    return *classes;
  }

  DWORD Add(REFCLSID clsid, CComPtr<IUnknown> classObject, DWORD context) {
    const std::lock_guard guard(m_lock);
    m_entries.push_back({clsid, std::move(classObject), context, ++m_lastCookie});
    return m_lastCookie;
  }

  // Gives the class object back, so that no lock is held when it goes; null when there is none.
  CComPtr<IUnknown> Remove(DWORD cookie) {
    const std::lock_guard guard(m_lock);
    const auto found =
        std::find_if(m_entries.begin(), m_entries.end(),
                     [cookie](const Entry& entry) { return entry.cookie == cookie; });
    if (found == m_entries.end()) return nullptr;
    CComPtr<IUnknown> classObject = std::move(found->classObject);
    m_entries.erase(found);
    return classObject;
  }

  // Gives the newest class object of a class; null when there is none.
  CComPtr<IUnknown> Find(REFCLSID clsid, DWORD context) {
    const std::lock_guard guard(m_lock);
    const auto found = std::find_if(m_entries.rbegin(), m_entries.rend(), [&](const Entry& entry) {
      return entry.clsid == clsid && (entry.context & context) != 0;
    });
    if (found == m_entries.rend()) return nullptr;
    return found->classObject;
  }

 private:
  struct Entry {
    CLSID clsid;
    CComPtr<IUnknown> classObject;
    DWORD context;
    DWORD cookie;
  };
  std::mutex m_lock;
  std::vector<Entry> m_entries;  // guarded by m_lock
  DWORD m_lastCookie = 0;        // guarded by m_lock
};

HRESULT ClassObjectOfModule(REFCLSID clsid, REFIID iid, void** object) {
  const std::wstring module = ClassRegistryText({L"CLSID", GuidText(clsid), L"InprocServer32"});
  if (module.empty()) return REGDB_E_CLASSNOTREG;
  // A module stays loaded for good: its objects may live anywhere.
  void* const library =
      dlopen((ComponentFolder() / HostPath(module)).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return CO_E_DLLNOTFOUND;
  using GetClassObject = HRESULT (*)(REFCLSID, REFIID, void**);
  const auto entry = reinterpret_cast<GetClassObject>(dlsym(library, "DllGetClassObject"));
  if (entry == nullptr) return CO_E_ERRORINDLL;
  return entry(clsid, iid, object);
}

}  // namespace

HRESULT CreateComponent(const wchar_t* progId, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  CLSID clsid;
  const HRESULT known = CLSIDFromProgID(progId, &clsid);
  if (FAILED(known)) return known;
  const HRESULT made = CoCreateInstance(clsid, nullptr, CLSCTX_ALL, iid, object);
  if (made != CO_E_NOTINITIALIZED) return made;
  const HRESULT initialized = CoInitialize(nullptr);
  if (FAILED(initialized)) return initialized;
  return CoCreateInstance(clsid, nullptr, CLSCTX_ALL, iid, object);
}

}  // namespace cvars::platform

using namespace cvars::platform;

HRESULT CoInitialize(void* reserved) { return CoInitializeEx(reserved, COINIT_APARTMENTTHREADED); }

HRESULT CoInitializeEx(void*, DWORD kind) {
  const DWORD wanted = kind & COINIT_APARTMENTTHREADED;
  if (apartment.count != 0 && apartment.kind != wanted) return RPC_E_CHANGED_MODE;
  apartment.kind = wanted;
  return apartment.count++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize() {
  if (apartment.count != 0) --apartment.count;
}

HRESULT CoGetClassObject(REFCLSID clsid, DWORD context, void*, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (apartment.count == 0) return CO_E_NOTINITIALIZED;
  const CComPtr<IUnknown> offered = OfferedClasses::Instance().Find(clsid, context);
  if (offered != nullptr) return offered->QueryInterface(iid, object);
  if ((context & CLSCTX_INPROC) == 0) return REGDB_E_CLASSNOTREG;
  return ClassObjectOfModule(clsid, iid, object);
}

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                         void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  CComPtr<IClassFactory> factory;
  const HRESULT found = CoGetClassObject(clsid, context, nullptr, IID_IClassFactory,
                                         reinterpret_cast<void**>(&factory));
  return FAILED(found) ? found : factory->CreateInstance(outer, iid, object);
}

HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* classObject, DWORD context, DWORD,
                              DWORD* cookie) {
  if (cookie == nullptr) return E_INVALIDARG;
  *cookie = 0;
  if (classObject == nullptr || context == 0) return E_INVALIDARG;
  *cookie = OfferedClasses::Instance().Add(clsid, classObject, context);
  return S_OK;
}

HRESULT CoRevokeClassObject(DWORD cookie) {
  return OfferedClasses::Instance().Remove(cookie) != nullptr ? S_OK : CO_E_OBJNOTREG;
}
