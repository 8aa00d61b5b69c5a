#pragma once

#include "Export.h"
#include "Unknown.h"

/// Where the server of a class may run. All classes run in the process here.
inline constexpr DWORD CLSCTX_INPROC_SERVER = 0x1;
inline constexpr DWORD CLSCTX_INPROC_HANDLER = 0x2;
inline constexpr DWORD CLSCTX_LOCAL_SERVER = 0x4;
inline constexpr DWORD CLSCTX_REMOTE_SERVER = 0x10;
inline constexpr DWORD CLSCTX_INPROC = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER;
inline constexpr DWORD CLSCTX_SERVER =
    CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;
inline constexpr DWORD CLSCTX_ALL = CLSCTX_SERVER | CLSCTX_INPROC_HANDLER;

/// Kinds of apartments.
inline constexpr DWORD COINIT_MULTITHREADED = 0x0;
inline constexpr DWORD COINIT_APARTMENTTHREADED = 0x2;

/// How a class object may be used; a registration serves any number of creations whatever it says.
inline constexpr DWORD REGCLS_SINGLEUSE = 0;
inline constexpr DWORD REGCLS_MULTIPLEUSE = 1;

inline constexpr HRESULT RPC_E_CHANGED_MODE = cvars::ResultCode(0x80010106);

/// Initialises the component runtime for the calling thread; each success, S_FALSE included, is
/// to be balanced by CoUninitialize.
///
/// @param reserved  null.
/// @retval S_OK     the thread was not initialised
/// @retval S_FALSE  it was
CVARS_API HRESULT CoInitialize(void* reserved);
/// @param kind  COINIT_MULTITHREADED or COINIT_APARTMENTTHREADED; other bits are not looked at.
/// @retval RPC_E_CHANGED_MODE  the thread was initialised with the other kind; nothing is counted
CVARS_API HRESULT CoInitializeEx(void* reserved, DWORD kind);
/// Undoes one initialisation; one too many does nothing.
CVARS_API void CoUninitialize();

/// Allocates memory that the caller frees with CoTaskMemFree.
CVARS_API void* CoTaskMemAlloc(std::size_t bytes);
CVARS_API void CoTaskMemFree(void* memory);

/// Gives the class that a programmatic identifier ("Vortana.MessageBox") stands for, by the class
/// registry. Needs no initialised thread.
///
/// @retval E_INVALIDARG     an argument is null; *clsid is GUID_NULL
/// @retval CO_E_CLASSSTRING not registered; *clsid is GUID_NULL
CVARS_API HRESULT CLSIDFromProgID(const wchar_t* progId, CLSID* clsid);
/// @param[out] progId  caller frees with CoTaskMemFree; null on failure.
/// @retval REGDB_E_CLASSNOTREG  not registered, or without a programmatic identifier
CVARS_API HRESULT ProgIDFromCLSID(REFCLSID clsid, wchar_t** progId);
/// Writes "{00000000-0000-0000-C000-000000000046}", in upper case.
///
/// @param size  characters at text.
/// @return characters written, the terminator included (39); 0 when they do not fit.
CVARS_API int StringFromGUID2(REFGUID guid, wchar_t* text, int size);
/// Reads an identifier in braces, digits in either case, or takes the text as a programmatic
/// identifier. A null text is GUID_NULL.
///
/// @retval CO_E_CLASSSTRING  neither
CVARS_API HRESULT CLSIDFromString(const wchar_t* text, CLSID* clsid);

/// Makes an object of a class.
///
/// @param outer    null; classes that can be aggregated are up to their factories.
/// @param context  CLSCTX_ bits.
/// @param object   receives the interface with one reference; null on every failure.
/// @retval E_POINTER            object is null
/// @retval CO_E_NOTINITIALIZED  the thread was not initialised
/// @retval REGDB_E_CLASSNOTREG  no such class for this context
/// @retval CO_E_DLLNOTFOUND     its module cannot be loaded
/// @retval CO_E_ERRORINDLL      its module makes no classes
/// @return otherwise what the factory answered
CVARS_API HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                                   void** object);
/// Gives the factory of a class: a registered class object, else that of the installed module.
/// Results as above.
///
/// @param serverInfo  null.
CVARS_API HRESULT CoGetClassObject(REFCLSID clsid, DWORD context, void* serverInfo, REFIID iid,
                                   void** object);
/// Offers a class object to the whole process, ahead of installed modules; the newest one of a
/// class is asked.
///
/// @param classObject  held by reference until it is revoked.
/// @param flags        REGCLS_ bits, not looked at.
/// @param cookie       receives the number that revokes it, never 0.
/// @retval E_INVALIDARG  classObject or cookie is null, or the context is 0
CVARS_API HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* classObject, DWORD context,
                                        DWORD flags, DWORD* cookie);
/// @retval CO_E_OBJNOTREG  no registration has this number
CVARS_API HRESULT CoRevokeClassObject(DWORD cookie);

namespace cvars::platform {

/// Makes an object by programmatic identifier. A thread that is not initialised is initialised,
/// for good, and the creation tried once more.
///
/// @param progId  borrowed.
/// @param object  receives the interface with one reference; null on every failure.
/// @return E_POINTER, the failure of CLSIDFromProgID, or what CoCreateInstance answered
CVARS_API HRESULT CreateComponent(const wchar_t* progId, REFIID iid, void** object);

}  // namespace cvars::platform
