#pragma once

#include "CComBSTR.h"
#include "CCvarEnumValue.h"
#include "CvarImpl.h"
#include "EnumTable.h"
#include "IVorCvarEnum.h"

/// How a page that belongs to an entry is shown.
enum DLGPAGETYPE : std::uint32_t {
  DLGPAGE_CHILD = 0,  ///< Inside the page that shows the enum.
  DLGPAGE_MAIN = 1,   ///< In place of the page that shows the enum.
};

/// A choice: one entry of an ordered list of named states.
///
/// Every entry has three spellings and may be disabled. A request is kept as written and adapts to
/// the nearest enabled entry, so an entry that is enabled later brings the value back to what was
/// asked. The entries are read and changed under the cvar's lock; listeners are called outside it.
///
/// Before the first adaptation the requested, the default and the adapted index are three different
/// numbers below -1, so that a value that was never set is told from every other; that is meant.
class CVARS_API CCvarEnum : public IVorCvarImpl<CCvarEnum, IVorCvarEnum, int> {
  using Base = IVorCvarImpl<CCvarEnum, IVorCvarEnum, int>;

 public:
  static constexpr const wchar_t* kTypeName = L"Enum";

  CCvarEnum();

  using Base::GetAdaptedValue;
  using Base::GetAdaptedValueNorm;
  using Base::GetRequestedValue;

  /// Names and configures the cvar and requests its default; tells nobody.
  ///
  /// @param name      copied; "name" or "name|remote name"; null reads as empty.
  /// @param values    copied; the entries, separated by commas, each "screen", "screen|automation"
  ///                  or "screen|automation|remote". Empty ones are left out.
  /// @param flags     stored first, so that CVARFLAG_SPECIALCHARS counts for the entries.
  /// @param guiHints  copied; null keeps the hints.
  /// @param iconId    icon of the cvar, from the module of its parent.
  void Initialize(const wchar_t* name, const wchar_t* values, int defaultIndex, CVARFLAGS flags,
                  const wchar_t* guiHints, unsigned int helpStringID,
                  CVARREPLICATIONFLAGS replicationFlags, unsigned long iconId);

  // Building the list. What changes it sets NOTIFY_RANGE, and NOTIFY_VALUE when the adapted value
  // moves.

  /// Adds an enabled entry for each piece of a text.
  ///
  /// A piece with the three spellings of an entry that is there, in any case, is left out, and so
  /// is an empty one.
  ///
  /// @param text    copied; split at every ",".
  /// @param iconId  icon of the entries, from the cvar's own icon module; 0 for none.
  /// @param index   place of a single piece: before the entry there, else behind the last. Several
  ///                pieces always go behind the last.
  /// @retval E_INVALIDARG  nothing was added
  /// @return otherwise what the listeners answered
  HRESULT AddValue(const wchar_t* text, int iconId, int index);
  /// Adds one entry, which is not split at ",", with its icon.
  HRESULT AddValueAndIconInfo(const wchar_t* text, unsigned long iconId, HINSTANCE module,
                              int index);
  /// Adds one entry, which is not split at ",", with its variant and its object.
  /// @param value   copied.
  /// @param object  null for none; held as long as the entry.
  HRESULT AddValueWithVariant(const wchar_t* text, VARIANT value, IUnknown* object, int index);
  /// Puts an entry before the one at an index, or behind the last; tells nobody.
  ///
  /// @param entry  taken over, and destroyed when the text that it was made from is empty.
  /// @return whether it was added
  bool AddValueIfValid(CCvarEnumValue* entry, int index);
  /// Adds an entry with a child page behind the last, or enables the entry that the name matches.
  /// @param page    text of the page, kept as EXTRAENUMDATA_CHILDPAGE.
  /// @param object  null for none; held as long as the entry.
  /// @retval E_INVALIDARG  the name is empty
  HRESULT AddChildPage(CComBSTR name, CComBSTR page, IUnknown* object);
  /// As AddChildPage, also storing the entry's variant and how its page is shown.
  HRESULT AddPage(const wchar_t* name, const wchar_t* page, CComVariant value, DLGPAGETYPE type,
                  IUnknown* object);
  /// Says how the page of an entry is shown.
  /// @retval E_POINTER     type is null
  /// @retval E_INVALIDARG  no such entry
  HRESULT GetPageType(int index, DLGPAGETYPE* type);

  /// Removes the entry that a text matches. @return how many were removed, 0 or 1
  int DeleteValue(const wchar_t* text);
  /// Removes every entry and tells the listeners, also when there was none.
  HRESULT DeleteAllValues();
  /// Removes every entry; neither adapts the value nor tells anybody.
  void DeleteAllValuesNoNotify();

  /// Replaces the whole list, and the attributes that are given.
  ///
  /// Empty pieces are left out, equal ones stay. NOTIFY_RANGE is set when a spelling, its case
  /// counting, or the number of entries differs; NOTIFY_ATTRIBUTES when the default or the help
  /// string ID does, and taken back when neither does.
  ///
  /// @param values        copied; as for Initialize.
  /// @param guiHints      copied; null keeps the hints.
  /// @param helpStringID  0 keeps the ID.
  /// @param setDefault    whether `defaultIndex` is taken.
  HRESULT SetRange(const wchar_t* values, int defaultIndex, const wchar_t* guiHints,
                   unsigned int helpStringID, bool setDefault);
  /// Adds an entry for each piece of a text behind the last; tells nobody.
  /// @param values  copied; as for Initialize.
  void SetValueStringVectors(const wchar_t* values, int enabled);

  /// Replaces one spelling of an entry as it is given.
  /// @return whether it differed, case counting
  bool ChangeStringScreenValue(const CComVariant& which, const CComBSTR& text);
  bool ChangeStringAutomationValue(const CComVariant& which, const CComBSTR& text);
  bool ChangeStringRemoteValue(const CComVariant& which, const CComBSTR& text);

  /// Sets or clears CVARFLAG_WRAPPING. @return whether it changed
  bool SetWrapModeOn(int on) { return SetWrapping(on); }
  /// Sets NOTIFY_ATTRIBUTES. @retval S_FALSE  no change
  HRESULT SetDefaultValue(int index);

  // Looking at the list
  //

  /// Index of the last entry; -1 when there is none.
  int MaxValueIndex();
  bool IsValidIndex(int index);
  /// First entry with a spelling that is the text but for its case; -1 when there is none.
  /// @param text  borrowed; null reads as empty.
  int GetIndexOfStringValue(const wchar_t* text);
  /// The index that a variant means: an integer as it stands, the entry that a text matches, else
  /// -1.
  int GetIndexOfVariant(const VARIANT& which);
  int NextValue(int index);
  int PrevValue(int index);

  /// Writes to the event log under the source "CvarEnum", with the names of bag and cvar.
  /// @param level  1 error, 2 warning, 4 information.
  /// @return what the log answered
  HRESULT LogCvarEnumEvent(const CComBSTR& text, long level);

  // IVorCvarEnum
  //

  HRESULT GetAdaptedValue(int* index) override { return Base::GetAdaptedValue(index); }
  HRESULT GetDefaultValue(int* index) override { return Base::GetDefaultValue(index); }
  HRESULT GetRequestedValue(int* index) override { return Base::GetRequestedValue(index); }
  HRESULT SetRequestedValue(int index) override { return SetRequestedValue(index, false); }
  /// Requests an index, which may lie outside the list. Sets NOTIFY_REQUESTED, and NOTIFY_VALUE
  /// when the adapted value moves. With CVARFLAG_D an index that is not enabled leaves the adapted
  /// value.
  ///
  /// @param force  writes a read-only cvar too.
  /// @retval E_ACCESSDENIED  read-only and not forced
  HRESULT SetRequestedValue(int index, bool force) override;
  HRESULT SetRequestedValueFromString(const wchar_t* text) override {
    return SetRequestedValueFromString(text, false);
  }
  /// Requests the entry that a text matches.
  ///
  /// While there is no entry at all the text is kept, and requested as soon as an entry matches it;
  /// "undef" is not kept.
  ///
  /// @retval E_INVALIDARG  no entry matches
  HRESULT SetRequestedValueFromString(const wchar_t* text, bool force) override;
  HRESULT GetNumberOfValueStates(int* count) override;
  int GetNumberOfEnabledValueStates() override;
  HRESULT GetMin(int* index) override;
  HRESULT GetMax(int* index) override;
  HRESULT GetValueStringScreen(int index, BSTR* text) override;
  HRESULT GetValueStringAutomation(int index, BSTR* text) override;
  HRESULT GetValueStringRemote(int index, BSTR* text) override;
  HRESULT GetIndexOfStringName(const wchar_t* text, int* index) override;
  /// Sets NOTIFY_RANGE, and NOTIFY_VALUE when the adapted value moves. @retval S_FALSE  no change
  HRESULT Enable(int index, int enable) override;
  HRESULT Enable(VARIANT entry) override { return Enable(entry, 1); }
  HRESULT Enable(VARIANT entry, int enable) override;
  HRESULT Disable(int index) override { return Enable(index, 0); }
  HRESULT Disable(VARIANT entry) override { return Enable(entry, 0); }
  HRESULT IsEnabled(int index, int* enabled) override;
  HRESULT IsEnabled(VARIANT entry, int* enabled) override {
    return IsEnabled(GetIndexOfVariant(entry), enabled);
  }
  HRESULT GetVariant(int index, VARIANT* value) override;
  /// Sets NOTIFY_RANGE; so do the other setters of what belongs to an entry.
  /// @retval S_FALSE  no change
  HRESULT SetVariant(int index, VARIANT value) override;
  HRESULT GetEnumIUnknown(int index, IUnknown** object) override;
  HRESULT SetEnumValueIconInfo(int index, unsigned long iconId, HINSTANCE module) override;
  HRESULT GetEnumValueIconInfo(int index, unsigned long* iconId, unsigned long* module) override;
  HRESULT SetExtraEnumData(int index, EXTRAENUMDATA kind, VARIANT value) override;
  HRESULT GetExtraEnumData(int index, EXTRAENUMDATA kind, VARIANT* value) override;
  HRESULT IsWrapModeOn(int* on) override { return CoreIsFlagSet(CVARFLAG_WRAPPING, on); }
  HRESULT GetRangeStringScreen(BSTR* text) override { return get_RangeStringScreen(text); }
  HRESULT GetRangeStringRemote(BSTR* text) override { return get_RangeStringRemote(text); }
  /// The entries as screen|automation|remote, joined by ",".
  HRESULT GetFullRangeString(int includeDisabled, BSTR* text) override;

  // The common interface
  //

  /// Adapted index divided by the last one; a single entry gives not-a-number, which is meant.
  HRESULT GetAdaptedValueNorm(double* position) override;
  /// @retval E_INVALIDARG  the index would not be finite
  HRESULT SetRequestedValueNorm(double position) override;
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override;
  /// Moves by a number of enabled entries; CVARFLAG_REVERSEINCREMENT turns the direction. Gives up
  /// after as many moves as there are entries.
  HRESULT Increment(int steps) override;
  HRESULT SetToDefault() override { return SetRequestedValue(m_default); }
  /// VT_BSTR, the automation spelling.
  HRESULT get_Value(VARIANT* value) override;
  /// Requests the entry that a text matches, or an index.
  HRESULT put_Value(VARIANT value) override;
  HRESULT get_Range(BSTR* text) override { return GetFullRangeString(0, text); }
  HRESULT get_RangeStringScreen(BSTR* text) override;
  HRESULT get_RangeStringRemote(BSTR* text) override;
  HRESULT get_RangeStringAutomation(BSTR* text) override;
  HRESULT get_Signature(BSTR* text) override;

  HRESULT UpdateAdaptedValueAndNotify() override { return UpdateAdaptedValueAndNotifyWorker(); }

 protected:
  ~CCvarEnum() = default;

  virtual HRESULT UpdateAdaptedValueAndNotifyWorker();
  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

 private:
  using Spelling = cvars::EnumTable::Spelling;

  static const CComBSTR& SpellingOf(const CCvarEnumValue& entry, Spelling spelling) noexcept;
  cvars::EnumTable::Entry MakeEntry(std::wstring_view text) const;
  void AppendPieces(cvars::EnumTable& table, std::wstring_view values, int enabled) const;
  HRESULT AddEntry(cvars::EnumTable::Entry entry, int index);
  template <class Change>
  HRESULT ChangeTable(Change change);
  static HRESULT SetEnabled(cvars::EnumTable& table, int index, bool enabled);
  void StoreRequest(int index) CVARS_REQUIRES(m_lock);
  void Adapt() CVARS_REQUIRES(m_lock);
  bool ChangeSpelling(const CComVariant& which, Spelling spelling, const CComBSTR& text);
  HRESULT CopySpelling(int index, Spelling spelling, BSTR* text);
  HRESULT CopyAdaptedSpelling(Spelling spelling, BSTR* text);
  HRESULT CopyRange(Spelling spelling, BSTR* text);
  /// Looks a text up without the lock, which the table allows for this alone.
  /// @return whether the index could be told
  bool TryFind(std::wstring_view text, int& index) const CVARS_NO_THREAD_SAFETY_ANALYSIS {
    return m_table.TryFind(text, index);
  }
  std::wstring JoinedOf(int index) const;
  template <class Exchange>
  HRESULT ChangeEntry(int index, Exchange exchange);
  HRESULT ExchangeVariant(int index, std::size_t slot, const VARIANT& value);

  cvars::EnumTable m_table CVARS_GUARDED_BY(m_lock);
  CComBSTR m_pendingText CVARS_GUARDED_BY(m_lock);  // requested while the list was empty
};

extern template class IVorCvarImpl<CCvarEnum, IVorCvarEnum, int>;
