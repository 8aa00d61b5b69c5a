#pragma once

#include "BasicTypes.h"
#include "Export.h"
#include "TattlerClient.h"

/// Reads the version of a module file, inside a probe of its own monitoring client.
class CVARS_API CDLLVersions {
 public:
  CDLLVersions();
  ~CDLLVersions();
  CDLLVersions(const CDLLVersions&) = delete;
  CDLLVersions& operator=(const CDLLVersions&) = delete;

  /// Of the four parts of a version, the text has the first and third whole and of the second and
  /// fourth the low byte only: 6.3.9600.17415 reads "6.3.9600.7".
  ///
  /// @param path          borrowed; a path of the platform. Null reads as a missing file.
  /// @param packedNumber  receives the low bytes of the four parts, in base 100 (5.1.2600.0 gives
  ///                      5014000); 0 without a version.
  /// @param versionText   caller frees; the empty string without a version.
  /// @return whether the file has a version record; false, and nothing is written, when a result
  ///         pointer is null.
  bool RetrieveFileVersion(const wchar_t* path, ULONG* packedNumber, BSTR* versionText);

  /// The monitoring client that the probes of a process share through its versions object.
  cvars::TattlerClient& ProbeClient() noexcept { return m_client; }

 private:
  cvars::TattlerClient m_client;
};

namespace cvars {

/// The process's own versions object, made at the first call.
CVARS_API CDLLVersions& ProcessDllVersions();

}  // namespace cvars
