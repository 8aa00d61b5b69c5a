#pragma once

#include <vector>

#include "CvarImpl.h"
#include "IVorCvarRegister.h"
#include "Relaxed.h"

/// A mirror of one hardware register of up to 32 bits.
///
/// The adapted value is what the hardware holds: a write hands the request to UpdateFromHardware,
/// which here takes it as read back at once. A class that drives real hardware overrides
/// UpdateFromHardware, writes the value there, and calls this one with what it reads back; it may
/// also call this one whenever the hardware reports a new content.
///
/// A write to a read-only register is passed over in silence and succeeds; that is meant. Callers
/// that change one register from several threads serialise themselves; any thread may read it.
class CVARS_API CCvarRegister : public IVorCvarImpl<CCvarRegister, IVorCvarRegister, unsigned int> {
  using Base = IVorCvarImpl<CCvarRegister, IVorCvarRegister, unsigned int>;

 public:
  static constexpr const wchar_t* kTypeName = L"Register";
  static constexpr unsigned int kMaxNbOfBits = 32;

  /// Names and configures the register and writes its default; tells nobody.
  ///
  /// @param name          copied; "name" or "name|remote name"; null reads as empty.
  /// @param defaultValue  stored as far as `mask` as given reaches, bits above the width included;
  ///                      that is meant.
  /// @param accessStyle   ACCESSSTYLE_READONLY makes the cvar read-only whatever the flags say.
  /// @param nbOfBits      width; 0 and numbers from 32 on mean 32.
  /// @param mask          the bits that exist; cut to the width.
  /// @param guiHints      copied; null clears the hints.
  /// @param notifyOnEveryUpdate  whether a read-back of the same value counts as a change.
  void Initialize(const wchar_t* name, unsigned int defaultValue, ACCESSSTYLE accessStyle,
                  unsigned int hardwareAddress, unsigned int nbOfBits, unsigned int mask,
                  CVARFLAGS flags, const wchar_t* guiHints, unsigned int helpStringID,
                  CVARREPLICATIONFLAGS replicationFlags, bool notifyOnEveryUpdate);

  // IVorCvarRegister
  // ---------------------------------------------------------------------------------

  /// Runs a late update, then reads the adapted value.
  HRESULT GetAdaptedValue(unsigned int* value) override;
  HRESULT GetDefaultValue(unsigned int* value) override { return Base::GetDefaultValue(value); }
  HRESULT GetRequestedValue(unsigned int* value) override { return Base::GetRequestedValue(value); }
  /// Stores a request and hands it to UpdateFromHardware, an unchanged one too. Sets
  /// NOTIFY_REQUESTED when it differs from the last.
  /// @return S_OK when read-only, which changes nothing; otherwise what UpdateFromHardware answered
  HRESULT SetRequestedValue(unsigned int value) override;
  /// Takes what the hardware holds: the adapted value becomes the bits of it that exist. Sets
  /// NOTIFY_VALUE when that is a change, or when every update is one.
  /// @retval S_OK  whatever listeners answer
  HRESULT UpdateFromHardware(unsigned int value) override;
  HRESULT GetMask(unsigned int* mask) override { return Read(m_mask, mask); }
  HRESULT GetNbOfBits(unsigned int* count) override { return Read(m_nbOfBits, count); }
  HRESULT GetHardwareAddress(unsigned int* address) override {
    return Read(m_hardwareAddress, address);
  }
  HRESULT GetAccessStyle(ACCESSSTYLE* style) override { return Read(m_accessStyle, style); }
  /// Cuts the mask to the width. Sets NOTIFY_FLAGS, as do the next three. @retval S_FALSE  no
  /// change
  HRESULT SetMask(unsigned int mask) override;
  /// Leaves the mask as it is. @param count  0 and numbers from 32 on mean 32.
  /// @retval S_FALSE  no change
  HRESULT SetNbOfBits(unsigned int count) override;
  /// @retval S_FALSE  no change
  HRESULT SetHardwareAddress(unsigned int address) override;
  /// Makes the cvar read-only or writable with its style; notifies an unchanged style too.
  HRESULT SetAccessStyle(ACCESSSTYLE style) override;
  /// Sets NOTIFY_ATTRIBUTES. @retval S_FALSE  no change
  HRESULT SetDefaultValue(unsigned int value) override;
  /// Adds a field behind those that are there; nothing is checked or replaced.
  /// @param description  copied; may be null.
  HRESULT SetFieldDescription(unsigned int firstBit, unsigned int lastBit,
                              const wchar_t* description) override;
  /// Gives the field that was added first of those that hold a bit; zeros and null when there is
  /// none, which is no failure.
  /// @param[out] description  caller frees; null for a field without one.
  HRESULT GetFieldDescription(unsigned int bit, unsigned int* firstBit, unsigned int* lastBit,
                              BSTR* description) override;
  HRESULT GetFieldDescriptionFirstBit(unsigned int bit, unsigned int* firstBit) override;
  HRESULT GetFieldDescriptionLastBit(unsigned int bit, unsigned int* lastBit) override;
  /// @param[out] description  caller frees; untouched when no field holds the bit, which is meant.
  HRESULT GetFieldDescriptionString(unsigned int bit, BSTR* description) override;

  // The common interface
  // ----------------------------------------------------------------------------

  /// VT_BSTR: the adapted value as "&h1F".
  HRESULT get_Value(VARIANT* value) override;
  /// Writes a number, "&h1F" among them, or a text that reads as one; a text that does not writes
  /// 0.
  /// @retval E_INVALIDARG  neither
  HRESULT put_Value(VARIANT value) override;
  /// Eight hexadecimal digits, after a late update.
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override {
    return GetAdaptedValueStringScreen(text);
  }
  /// Writes decimal, "0x" hexadecimal or "0" octal digits; other texts write 0, which is meant.
  HRESULT SetRequestedValueFromString(const wchar_t* text) override;
  HRESULT SetToDefault() override { return SetRequestedValue(m_default); }
  HRESULT get_Range(BSTR* text) override;
  HRESULT get_Signature(BSTR* text) override;
  /// @param[out] position  0 where it can be written.
  /// @retval E_NOTIMPL  always
  HRESULT GetAdaptedValueNorm(double* position) override;
  HRESULT SetRequestedValueNorm(double) override { return S_OK; }
  HRESULT Increment(int) override { return S_OK; }
  /// A replica with REPLICATE_DEFAULT takes the default; one with REPLICATE_DESCRIPTION takes mask,
  /// width, style, address and fields when it is told of everything at once. None of it notifies. A
  /// field of bit 0 alone is not taken; that is meant.
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override;

  // Class side
  // -----------------------------------------------------------------------------------------

  using Base::GetAdaptedValue;
  using Base::GetRequestedValue;
  operator unsigned int();  // NOLINT: a cvar reads as its value, after a late update
  /// The adapted value follows the hardware, not the request: sends only what is pending.
  HRESULT UpdateAdaptedValueAndNotify() override {
    return NotifyClients(NOTIFY_ALL_CLIENTS, false);
  }

 protected:
  CCvarRegister() = default;
  ~CCvarRegister() = default;

  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

 private:
  struct Field {
    unsigned int firstBit;
    unsigned int lastBit;
    CComBSTR description;
  };

  template <class Value>
  static HRESULT Read(const cvars::Relaxed<Value>& field, Value* value) {
    if (value == nullptr) return E_POINTER;
    *value = field;
    return S_OK;
  }
  template <class Value>
  HRESULT Change(cvars::Relaxed<Value>& field, Value value, NOTIFYTYPE what);
  /// @return borrowed, valid under the object lock; null when no field holds the bit
  const Field* FindField(unsigned int bit) const;
  void TakeDescription(IVorCvarRegister& source);

  cvars::Relaxed<unsigned int> m_nbOfBits{kMaxNbOfBits};
  cvars::Relaxed<unsigned int> m_mask{0xFFFFFFFFu};
  cvars::Relaxed<unsigned int> m_hardwareAddress{0};
  cvars::Relaxed<ACCESSSTYLE> m_accessStyle{ACCESSSTYLE_READWRITE};
  cvars::Relaxed<bool> m_notifyOnEveryUpdate{false};
  std::vector<Field> m_fields;  // guarded by the object lock
};

extern template class IVorCvarImpl<CCvarRegister, IVorCvarRegister, unsigned int>;
