#pragma once

#include "Unknown.h"
#include "Variant.h"

/// {B29D383F-0CF3-4CE2-B725-92219799B4FF}
inline constexpr IID IID_IVorTattlerClient = {
    0xB29D383F, 0x0CF3, 0x4CE2, {0xB7, 0x25, 0x92, 0x21, 0x97, 0x99, 0xB4, 0xFF}};
/// {F64930FB-CFBA-471A-8225-D99B6B5F2695}, "Vortana.TattlerClient"
inline constexpr CLSID CLSID_TattlerClient = {
    0xF64930FB, 0xCFBA, 0x471A, {0x82, 0x25, 0xD9, 0x9B, 0x6B, 0x5F, 0x26, 0x95}};

/// The identifier that no probe has.
inline constexpr ULONG kNoProbe = 0xFFFFFFFFu;

/// What a report says about its probe.
inline constexpr ULONG kProbeEntry = 2;
inline constexpr ULONG kProbeExit = 3;

/// The road from a process to the monitoring tool.
class IVorTattlerClient : public IUnknown {
 public:
  /// Gives the identifier of a probe name; the same name always has the same identifier.
  ///
  /// @param identifier  receives the identifier; kNoProbe on every failure.
  virtual HRESULT RegisterProbe(const wchar_t* qualifiedName, ULONG* identifier) = 0;  // 3

  /// Reports that a probe was entered or left.
  ///
  /// @param entryOrExit  kProbeEntry or kProbeExit.
  virtual HRESULT ReportProbe(ULONG identifier, ULONG firstValue, ULONG entryOrExit,
                              ULONG secondValue) = 0;  // 4

  /// Says whether the tool wants reports at all.
  ///
  /// @param enabled  receives VARIANT_TRUE or VARIANT_FALSE; every value but 0 reads as true.
  virtual HRESULT IsMonitoringEnabled(VARIANT_BOOL* enabled) = 0;  // 5

 protected:
  ~IVorTattlerClient() = default;
};

template <>
struct cvars::InterfaceId<IVorTattlerClient> {
  static constexpr IID value = IID_IVorTattlerClient;
};
