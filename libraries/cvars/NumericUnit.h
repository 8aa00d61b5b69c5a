#pragma once

#include <atomic>
#include <string_view>

#include "Export.h"
#include "ResultCodes.h"

namespace cvars {

/// The unit of a numeric cvar, in its remote and its screen spelling.
///
/// Units come from a small vocabulary that many cvars share, so each spelling is kept once in the
/// process and for its life; a cvar holds one pointer that any thread may read. A screen spelling
/// that the service could not give is asked for again at the next use.
class CVARS_API NumericUnit {
 public:
  /// Sets the unit after the physical-unit service found it valid.
  ///
  /// @param remoteUnit    borrowed; null reads as empty.
  /// @param[out] changed  whether the unit is another one now.
  /// @retval E_INVALIDARG  no service, or not a valid unit; the unit stays
  /// @retval S_OK
  /// @return otherwise the failure of the service; the unit stays
  HRESULT Set(const wchar_t* remoteUnit, bool* changed);

  /// Remote spelling ("V"). @return lives as long as the process
  std::wstring_view Remote() const noexcept;
  /// Screen spelling, as the service gave it; empty while it gives none.
  /// @return lives as long as the process
  std::wstring_view Screen() const;

 private:
  struct Record;
  class Vocabulary;

  std::atomic<const Record*> m_record{nullptr};  // null is the empty unit
};

}  // namespace cvars
