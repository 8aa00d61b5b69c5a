#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "CComPtr.h"
#include "CvarBag.h"
#include "CvarCore.h"
#include "Export.h"

/// A named container that owns its cvars.
///
/// Scripts reach its cvars by name, beside the properties "Name", "Count" and "Item". Any thread
/// may use it.
class CVARS_API CCvarBag final : public CvarBag {
 public:
  /// Makes an empty bag with one reference.
  ///
  /// @param name    copied; null reads as empty.
  /// @param module  whose resources hold help texts, icons and bitmaps of the cvars; may be null.
  static CComPtr<CCvarBag> Create(const wchar_t* name, HINSTANCE module);

  /// Adds a cvar at the end and becomes its parent.
  ///
  /// @param cvar  held by reference; its name must be set before.
  /// @retval E_POINTER     cvar is null
  /// @retval E_INVALIDARG  it has a parent already
  HRESULT Add(cvars::CvarCore* cvar);
  /// Takes a cvar out, which then has no parent.
  /// @retval S_FALSE  it is not in the bag
  HRESULT Remove(cvars::CvarCore* cvar);

  /// Finds a cvar by its name or remote name, in any case. @return null when there is none
  CComPtr<IVorCvar> Find(const wchar_t* name) const;
  /// The cvar at a position from 0. @return null beyond the end
  CComPtr<IVorCvar> At(std::size_t index) const;
  std::size_t Count() const;
  const std::wstring& Name() const noexcept { return m_name; }

  HRESULT QueryInterface(REFIID iid, void** object) override;
  ULONG AddRef() override;
  ULONG Release() override;
  HRESULT GetTypeInfoCount(UINT* count) override;
  HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** typeInfo) override;
  HRESULT GetIDsOfNames(REFIID reserved, wchar_t** names, UINT nameCount, LCID locale,
                        DISPID* ids) override;
  HRESULT Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* parameters,
                 VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;
  HRESULT GetModuleInstanceHandle(HINSTANCE* module) override;
  HRESULT get_Item(VARIANT key, IVorCvar** cvar) override;
  HRESULT get_Count(long* count) override;

 private:
  CCvarBag(const wchar_t* name, HINSTANCE module);
  ~CCvarBag();

  std::size_t IndexOf(const wchar_t* name) const;

  const std::wstring m_name;
  const HINSTANCE m_module;
  std::atomic<ULONG> m_references{1};
  mutable std::mutex m_lock;
  std::vector<cvars::CvarCore*> m_cvars;  // guarded by m_lock; one reference each
};
