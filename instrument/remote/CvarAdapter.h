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
/// no translation: it hands the parameter over as a text and answers with the remote text.
class CvarAdapter {
 public:
  virtual ~CvarAdapter() = default;
  /// Runs `BAG:CVAR parameters`.
  virtual ScpiError Set(IVorCvar& cvar, const CommandCall& call) const;
  /// Runs `BAG:CVAR? parameters`.
  /// @param answer  is appended to.
  virtual ScpiError Query(IVorCvar& cvar, const CommandCall& call, std::string& answer) const;

 protected:
  /// Appends the cvar's remote text without unit.
  static ScpiError AppendValue(IVorCvar& cvar, std::string& answer);
};

/// The error that a remote client gets for a result code; kNone for success.
ScpiError ErrorOf(HRESULT result) noexcept;

/// The adapter for cvars of a type, by the type's name; CvarAdapter itself when it has none of its
/// own.
const CvarAdapter& AdapterOf(std::wstring_view type);

}  // namespace cvars::remote
