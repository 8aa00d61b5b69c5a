#pragma once

#include <string>
#include <string_view>

#include "IVorCvar.h"
#include "instrument/remote/Command.h"

namespace cvars::remote {

/// How remote clients speak to the cvars of one type.
///
/// What the command language writes in its own way is translated in the adapter of the type, so
/// that the cvars need to know nothing of it. This class serves every type whose remote text needs
/// no translation, an object's for example: it hands the parameter over as a text and answers with
/// the remote text.
class CvarAdapter {
 public:
  virtual ~CvarAdapter() = default;
  /// Runs `BAG:CVAR parameter`.
  virtual ScpiError Set(IVorCvar& cvar, const CommandCall& call) const;
  /// Runs `BAG:CVAR? parameters`; this one takes none.
  /// @param answer  is appended to.
  virtual ScpiError Query(IVorCvar& cvar, const CommandCall& call, std::string& answer) const;

 protected:
  /// Does what the one parameter asks for: DEFault brings the default back, and everything else
  /// is a value.
  virtual ScpiError SetParameter(IVorCvar& cvar, const Parameter& parameter) const;
  /// Sets the value that a parameter names; this one hands its text over.
  virtual ScpiError SetValue(IVorCvar& cvar, const Parameter& parameter) const;
  /// Appends the value; this one appends the remote text without unit.
  virtual ScpiError AppendValue(IVorCvar& cvar, std::string& answer) const;
};

/// The error that a remote client gets for a result code; kNone for success.
ScpiError ErrorOf(HRESULT result) noexcept;

/// The adapter for cvars of a type, by the type's name; CvarAdapter itself when it has none of its
/// own.
const CvarAdapter& AdapterOf(std::wstring_view type);

}  // namespace cvars::remote
