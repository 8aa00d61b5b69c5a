#pragma once

#include <string>
#include <string_view>

#include "Export.h"
#include "IVorCvar.h"

namespace cvars {

/// An unusual situation that interests developers.
struct DeveloperEvent {
  std::wstring source;    ///< "(CvarBag.Cvar) " and the names, or "CVorCvarWrapper".
  std::wstring message;   ///< With the target suffix when a listener is concerned.
  int severity = 0;       ///< 3 or 4.
  std::wstring category;  ///< "system".
  std::wstring detail;
  std::wstring value;  ///< What the event is about in a report that needs no cvar, else empty.
  IVorCvar* cvar = nullptr;  ///< Borrowed; null when no cvar is concerned.
};

/// Called with every event, on the thread that reports it.
using DeveloperEventObserver = void (*)(const DeveloperEvent& event, void* context);

/// Hands every developer event to an observer too; null ends it.
///
/// @param context  weak; given to the observer.
CVARS_API void SetDeveloperEventObserver(DeveloperEventObserver observer, void* context) noexcept;

/// Hands an event to the developer event log, and to the observer when there is one.
CVARS_API void ReportDeveloperEvent(const DeveloperEvent& event);

/// Source text of an event: "(CvarBag.Cvar) " and the bag-and-cvar name.
CVARS_API std::wstring DeveloperEventSource(IVorCvar* cvar);

/// Message of an event: the text, and who is concerned when a target is given: a bag, a cvar, or
/// "client unknown, possibly a widget".
/// @param target  borrowed; may be null.
CVARS_API std::wstring DeveloperEventMessage(std::wstring_view text, IUnknown* target);

/// Detail text that joins a line number and a text.
CVARS_API std::wstring DeveloperEventDetail(int line, std::wstring_view text);

/// Text of a failing result code: "hr=0x%08x: %s" of the code and the platform's message for it,
/// which loses its first line break.
CVARS_API std::wstring ResultText(HRESULT result);

/// Event of a call through a cvar wrapper that failed: its message is the text of the code, its
/// value the cvar's name or "Null Cvar Ptr".
///
/// @param cvar  borrowed; null when the wrapper holds none.
CVARS_API DeveloperEvent WrapperFailure(HRESULT result, IVorCvar* cvar);

/// Event that tells the line of a source text: its detail joins both, its value is "Null value".
///
/// @param cvar  borrowed; the cvar concerned.
CVARS_API DeveloperEvent EventAtLine(IVorCvar* cvar, std::wstring_view message, int line,
                                     std::wstring_view text);

/// Name of a container, read as its property "Name".
///
/// @param parent  borrowed; may be null.
/// @return the name; empty when `parent` offers no CvarBag interface or has no name.
CVARS_API std::wstring BagName(IUnknown* parent);

/// "%s.%s" of the parent's name and the cvar's name; begins with "." without a parent.
CVARS_API std::wstring BagAndCvarName(IVorCvar* cvar);

}  // namespace cvars
