#pragma once

#include "BitPatternRange.h"
#include "CvarImpl.h"
#include "IVorCvarBitPattern.h"
#include "RegExpMatcher.h"

/// A pattern of bits, such as a trigger pattern or a serial data word.
///
/// A request is stored without its blanks and in upper case; it holds allowed characters only. The
/// adapted value is the request brought to the pattern's length. Values and range are guarded by
/// the object lock, listeners run outside it: any thread may use the cvar.
class CVARS_API CCvarBitPattern
    : public IVorCvarImpl<CCvarBitPattern, IVorCvarBitPattern, CComBSTR> {
  using Base = IVorCvarImpl<CCvarBitPattern, IVorCvarBitPattern, CComBSTR>;

 public:
  static constexpr const wchar_t* kTypeName = L"BitPattern";

  /// Names and configures the cvar and requests its default; tells nobody.
  ///
  /// The arguments from `defaultValue` to `sizeAlign` are those of SetRange.
  /// @param name       copied; "name" or "name|remote name"; null reads as empty.
  /// @param guiHints   copied; null keeps the hints.
  void Initialize(const wchar_t* name, const wchar_t* defaultValue, int maxBits, int numBits,
                  CVARBITPATTERNFORMAT format, const wchar_t* allowedBitValues,
                  unsigned int paddingChar, CVARBITPATTERNPADALIGN padAlign,
                  CVARBITPATTERNSIZEALIGN sizeAlign, CVARFLAGS flags, const wchar_t* guiHints,
                  unsigned int helpStringID, CVARREPLICATIONFLAGS replicationFlags);

  /// Changes several attributes at once. Sets NOTIFY_RANGE when one of them or the default changed,
  /// NOTIFY_VALUE when the adapted value did, NOTIFY_GUIHINTS and NOTIFY_ATTRIBUTES for hints and
  /// help. An argument that is out of bounds is passed over.
  ///
  /// @param defaultValue      copied as it stands; null reads as empty.
  /// @param maxBits           0 to 32767; a change of it makes the length the same first.
  /// @param numBits           0 to 32767; cut down to the upper bound.
  /// @param allowedBitValues  which of "01BFRX" may occur, in any case; null empties the set.
  /// @param paddingChar       one of "01BFRX".
  /// @param guiHints          copied; null keeps the hints.
  /// @param helpStringID      0 keeps the ID.
  HRESULT SetRange(const wchar_t* defaultValue, int maxBits, int numBits,
                   CVARBITPATTERNFORMAT format, const wchar_t* allowedBitValues,
                   unsigned int paddingChar, CVARBITPATTERNPADALIGN padAlign,
                   CVARBITPATTERNSIZEALIGN sizeAlign, const wchar_t* guiHints,
                   unsigned int helpStringID);

  /// Sets NOTIFY_ATTRIBUTES. @param value  copied as it stands; null reads as empty.
  /// @retval S_FALSE  no change
  HRESULT SetDefaultValue(const wchar_t* value);

  /// Stores a request and adapts it. Sets NOTIFY_REQUESTED, NOTIFY_RANGE when the length followed
  /// it, and NOTIFY_VALUE when the adapted value moves.
  ///
  /// @param value  borrowed; blanks and case do not count; null reads as empty.
  /// @param force  writes a read-only cvar too.
  /// @retval E_ACCESSDENIED  read-only and not forced
  /// @retval E_INVALIDARG    a character that is not allowed; or, when the length follows in whole
  ///                         bytes, more than 32760 bits, and the request then stays stored
  /// @return otherwise what the listeners answered
  HRESULT SetRequestedValue(const wchar_t* value, bool force);

  // IVorCvarBitPattern
  // -------------------------------------------------------------------------------

  /// Runs a late update, then copies the adapted value.
  HRESULT GetAdaptedValue(BSTR* value) override;
  HRESULT GetDefaultValue(BSTR* value) override;
  HRESULT GetRequestedValue(BSTR* value) override;
  HRESULT SetRequestedValue(const wchar_t* value) override {
    return SetRequestedValue(value, false);
  }
  /// The adapted value as an unsigned number, in the 32 bits of the result.
  /// @retval E_INVALIDARG  longer than 32 bits, or a character that is neither "0" nor "1"
  HRESULT get_DecimalValue(int* value) override;
  /// The same, with its sign extended from the pattern's length. A length of 32 with the top bit
  /// set gives -1; that is meant.
  HRESULT GetSignedDecimalValue(int* value) override;
  /// Requests the 32 bits of a number; the side that the pattern pads is cut.
  HRESULT put_DecimalValue(int value) override;
  /// Requests hexadecimal digits, four bits each; "X" stands for four of them.
  /// @retval E_INVALIDARG  another character, or "X" where it is not allowed
  HRESULT put_HexadecimalValue(const wchar_t* value) override;
  /// "$" stands for four bits that are neither a number nor all "X".
  HRESULT get_HexadecimalValue(BSTR* value) override;
  /// All "0" when the allowed set is "01", else empty. @retval E_INVALIDARG  value is null
  HRESULT get_MinValue(BSTR* value) override { return Extreme(L'0', value); }
  /// All "1" when the allowed set is "01", else empty. @retval E_INVALIDARG  value is null
  HRESULT get_MaxValue(BSTR* value) override { return Extreme(L'1', value); }
  HRESULT get_NumBits(int* count) override;
  HRESULT get_NumBytes(int* count) override;
  HRESULT get_MaxNumBits(int* count) override;
  HRESULT get_Format(CVARBITPATTERNFORMAT* format) override;
  HRESULT get_AllowedBitValues(BSTR* characters) override;
  HRESULT get_PaddingChar(unsigned int* character) override;
  HRESULT get_PadAlign(CVARBITPATTERNPADALIGN* align) override;
  HRESULT get_SizeAlign(CVARBITPATTERNSIZEALIGN* align) override;
  /// Each setter of the range sets NOTIFY_RANGE, and NOTIFY_VALUE when the adapted value moves.
  /// @retval E_INVALIDARG  out of bounds  @retval S_FALSE  no change
  HRESULT put_MaxNumBits(int count) override;
  HRESULT put_NumBits(int count) override;
  HRESULT put_NumBytes(int count) override;
  HRESULT put_Format(CVARBITPATTERNFORMAT format) override;
  HRESULT put_AllowedBitValues(const wchar_t* characters) override;
  HRESULT put_PaddingChar(unsigned int character) override;
  HRESULT put_PadAlign(CVARBITPATTERNPADALIGN align) override;
  HRESULT put_SizeAlign(CVARBITPATTERNSIZEALIGN align) override;

  // The common interface
  // ----------------------------------------------------------------------------

  /// VT_BSTR; a variant that the caller has set to VT_I4 receives the decimal value instead.
  HRESULT get_Value(VARIANT* value) override;
  /// @retval E_INVALIDARG  not VT_BSTR
  HRESULT put_Value(VARIANT value) override;
  HRESULT GetRequestedVariantValue(VARIANT* value) override { return GetRequestedValue(value); }
  /// Groups of eight bits, or hexadecimal digits, as the format says.
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override;
  HRESULT SetRequestedValueFromString(const wchar_t* text) override {
    return SetRequestedValue(text, false);
  }
  HRESULT SetToDefault() override;
  HRESULT SetToMin() override;
  HRESULT SetToMax() override;
  HRESULT get_Range(BSTR* text) override;
  HRESULT get_Signature(BSTR* text) override;
  HRESULT IsDefault(int* isDefault) override;
  HRESULT get_IsValueAdapted(int* adapted) override;
  /// A pattern has no position in its range: 0.
  HRESULT GetAdaptedValueNorm(double* position) override;
  HRESULT SetRequestedValueNorm(double) override { return S_OK; }
  HRESULT Increment(int) override { return S_OK; }

  // Class side
  // -----------------------------------------------------------------------------------------

  CComBSTR GetAdaptedValue() override;
  HRESULT GetRequestedValue(VARIANT* value);
  HRESULT UpdateAdaptedValueAndNotify() override;

 protected:
  CCvarBitPattern() : m_matcher(0) {}
  ~CCvarBitPattern() = default;

  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

 private:
  template <class Change>
  HRESULT ChangeRange(Change change);
  template <class Read, class Value>
  HRESULT ReadRange(Read read, Value* value) const;
  HRESULT CopyText(const CComBSTR& field, BSTR* value) const;
  HRESULT Extreme(wchar_t bit, BSTR* value) const;
  HRESULT ReadNumber(std::uint32_t* number, std::uint32_t* width);

  cvars::BitPatternRange m_range;  // guarded by the object lock, as the values are
  cvars::RegExpMatcher m_matcher;
};

extern template class IVorCvarImpl<CCvarBitPattern, IVorCvarBitPattern, CComBSTR>;
