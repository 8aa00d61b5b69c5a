#pragma once

#include "CvarTextImpl.h"
#include "Relaxed.h"

namespace cvars {
/// The maximum length of a text that may have any length.
inline constexpr unsigned int kUnlimitedLength = 0xFFFFFFFFu;
}  // namespace cvars

/// What the text cvars with a maximum length share: the adapted text is the request cut to it.
///
/// @tparam T          CCvarString or CCvarObjectName.
/// @tparam Interface  IVorCvarString or an interface derived from it.
template <class T, class Interface>
class CVARS_API CvarBoundedTextImpl : public CvarTextImpl<T, Interface> {
  using Base = CvarTextImpl<T, Interface>;

 public:
  void* FindInterface(REFIID iid) override;

  HRESULT GetMaxLength(unsigned int* maxLength) override;
  HRESULT get_Range(BSTR* text) override;
  HRESULT get_Signature(BSTR* text) override;

  /// Names and configures the cvar and requests its default; tells nobody.
  ///
  /// @param name          copied; "name" or "name|remote name"; null reads as empty.
  /// @param defaultValue  copied.
  /// @param maxLength     in characters; -1 for any length.
  /// @param guiHints      copied; null keeps the hints.
  void Initialize(const wchar_t* name, const wchar_t* defaultValue, int maxLength, CVARFLAGS flags,
                  const wchar_t* guiHints, unsigned int helpStringID,
                  CVARREPLICATIONFLAGS replicationFlags);

  /// Changes default and maximum length. Sets NOTIFY_RANGE when the length changes,
  /// NOTIFY_ATTRIBUTES when the default or the help string ID changes, NOTIFY_GUIHINTS, and
  /// NOTIFY_VALUE when the adapted text changes with it.
  ///
  /// @param maxLength     in characters; kUnlimitedLength for any length.
  /// @param guiHints      copied; null keeps the hints.
  /// @param helpStringID  0 keeps the help string.
  virtual HRESULT SetRange(const wchar_t* defaultValue, unsigned int maxLength,
                           const wchar_t* guiHints, unsigned int helpStringID);

 protected:
  explicit CvarBoundedTextImpl(unsigned int maxLength) : m_maxLength(maxLength) {}
  ~CvarBoundedTextImpl() = default;

  /// The form in which a default is kept. @param text  may be null.
  virtual CComBSTR DefaultFrom(const wchar_t* text) { return CComBSTR(text); }

  CComBSTR Fit(const CComBSTR& request) override;
  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

  cvars::Relaxed<unsigned int> m_maxLength;
};
