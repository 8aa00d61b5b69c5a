#pragma once

#include "Export.h"
#include "Guid.h"
#include "ResultCodes.h"

struct VARIANT;

/// {00000000-0000-0000-C000-000000000046}
inline constexpr IID IID_IUnknown = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// Root of every interface: reference counting and the way to other interfaces.
///
/// Two interface pointers belong to the same object when the pointers that
/// QueryInterface(IID_IUnknown) gives are equal.
class CVARS_API IUnknown {
 public:
  /// Gives another interface of the same object, with one reference.
  /// @retval E_POINTER      object is null
  /// @retval E_NOINTERFACE  not offered; *object is null
  virtual HRESULT QueryInterface(REFIID iid, void** object) = 0;  // 0
  virtual ULONG AddRef() = 0;                                     // 1
  virtual ULONG Release() = 0;                                    // 2

 protected:
  ~IUnknown() = default;
};

class ITypeInfo;

/// What an Invoke is for.
inline constexpr WORD DISPATCH_METHOD = 1;
inline constexpr WORD DISPATCH_PROPERTYGET = 2;
inline constexpr WORD DISPATCH_PROPERTYPUT = 4;
inline constexpr WORD DISPATCH_PROPERTYPUTREF = 8;

inline constexpr DISPID DISPID_VALUE = 0;
inline constexpr DISPID DISPID_UNKNOWN = -1;
inline constexpr DISPID DISPID_PROPERTYPUT = -3;

/// Arguments of an Invoke, last argument first.
struct DISPPARAMS {
  VARIANT* rgvarg;
  DISPID* rgdispidNamedArgs;
  UINT cArgs;
  UINT cNamedArgs;
};

/// Details of a failed Invoke; the texts are caller frees.
struct EXCEPINFO {
  WORD wCode;
  WORD wReserved;
  BSTR bstrSource;
  BSTR bstrDescription;
  BSTR bstrHelpFile;
  DWORD dwHelpContext;
  void* pvReserved;
  HRESULT (*pfnDeferredFillIn)(EXCEPINFO*);
  SCODE scode;
};

/// {00020400-0000-0000-C000-000000000046}
inline constexpr IID IID_IDispatch = {
    0x00020400, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// Access to an object's members by name, for scripts.
class CVARS_API IDispatch : public IUnknown {
 public:
  virtual HRESULT GetTypeInfoCount(UINT* count) = 0;                               // 3
  virtual HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** typeInfo) = 0;  // 4
  virtual HRESULT GetIDsOfNames(REFIID reserved, wchar_t** names, UINT nameCount, LCID locale,
                                DISPID* ids) = 0;  // 5
  virtual HRESULT Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags,
                         DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                         UINT* argumentError) = 0;  // 6

 protected:
  ~IDispatch() = default;
};

/// {00000001-0000-0000-C000-000000000046}
inline constexpr IID IID_IClassFactory = {
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// Makes the objects of one class.
class CVARS_API IClassFactory : public IUnknown {
 public:
  virtual HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) = 0;  // 3
  virtual HRESULT LockServer(int lock) = 0;                                        // 4

 protected:
  ~IClassFactory() = default;
};

namespace cvars {
template <>
struct InterfaceId<IUnknown> {
  static constexpr IID value = IID_IUnknown;
};
template <>
struct InterfaceId<IDispatch> {
  static constexpr IID value = IID_IDispatch;
};
template <>
struct InterfaceId<IClassFactory> {
  static constexpr IID value = IID_IClassFactory;
};
}  // namespace cvars
