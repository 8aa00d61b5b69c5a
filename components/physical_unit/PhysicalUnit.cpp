#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "Bstr.h"
#include "IVorPhysicalUnit.h"
#include "platform/ComponentModule.h"

namespace {

using cvars::platform::Component;
using cvars::platform::Offers;

struct Unit {
  std::wstring_view remote;
  std::wstring_view screen;
};

// A text that is the remote spelling of one unit and the screen spelling of another ("S" would be
// seconds and siemens) is kept out of the table, except where both spellings are the same. What
// changes with a plural on screen (sweep, decade, hour, day, wk, bit, byte) stands in full.
constexpr Unit kUnits[] = {
    // electrical
    {L"V", L"V"},
    {L"VPP", L"Vpp"},
    {L"VPK", L"Vpk"},
    {L"VRMS", L"Vrms"},
    {L"VDC", L"Vdc"},
    {L"VAC", L"Vac"},
    {L"A", L"A"},
    {L"APP", L"App"},
    {L"APK", L"Apk"},
    {L"ARMS", L"Arms"},
    {L"W", L"W"},
    {L"VA", L"VA"},
    {L"VAR", L"var"},
    {L"WH", L"Wh"},
    {L"AH", L"Ah"},
    {L"OHM", L"\u03a9"},
    {L"F", L"F"},
    {L"H", L"H"},
    {L"C", L"C"},
    {L"T", L"T"},
    {L"WB", L"Wb"},
    {L"EV", L"eV"},
    // time and frequency
    {L"S", L"s"},
    {L"MIN", L"min"},
    {L"HOUR", L"hour"},
    {L"DAY", L"day"},
    {L"WK", L"wk"},
    {L"HZ", L"Hz"},
    {L"RTHZ", L"\u221aHz"},
    {L"RPM", L"rpm"},
    {L"BAUD", L"baud"},
    {L"BPS", L"bps"},
    // levels and ratios
    {L"DB", L"dB"},
    {L"DBC", L"dBc"},
    {L"DBFS", L"dBFS"},
    {L"DBM", L"dBm"},
    {L"DBMV", L"dBmV"},
    {L"DBUA", L"dB\u00b5A"},
    {L"DBUV", L"dB\u00b5V"},
    {L"DBV", L"dBV"},
    {L"DBW", L"dBW"},
    {L"PCT", L"%"},
    {L"PPM", L"ppm"},
    {L"PPB", L"ppb"},
    {L"UI", L"UI"},
    // angle
    {L"DEG", L"\u00b0"},
    {L"RAD", L"rad"},
    {L"REV", L"rev"},
    // mechanics, temperature, light
    {L"M", L"m"},
    {L"G", L"g"},
    {L"N", L"N"},
    {L"PA", L"Pa"},
    {L"BAR", L"bar"},
    {L"J", L"J"},
    {L"K", L"K"},
    {L"CEL", L"\u00b0C"},
    {L"FAR", L"\u00b0F"},
    {L"LM", L"lm"},
    {L"LX", L"lx"},
    {L"CD", L"cd"},
    // counted things of an acquisition
    {L"DIV", L"div"},
    {L"SWEEP", L"sweep"},
    {L"DECADE", L"decade"},
    {L"OCTAVE", L"octave"},
    {L"BIT", L"bit"},
    {L"BYTE", L"byte"},
    {L"LSB", L"LSB"},
    {L"CODE", L"code"},
    {L"COUNT", L"count"},
    {L"CYCLE", L"cycle"},
    {L"EDGE", L"edge"},
    {L"EVENT", L"event"},
    {L"FRAME", L"frame"},
    {L"PIXEL", L"pixel"},
    {L"PTS", L"pts"},
    {L"PULSE", L"pulse"},
    {L"SAMPLE", L"sample"},
    {L"SEGMENT", L"segment"},
    {L"SYMBOL", L"symbol"},
    {L"WFM", L"wfm"},
    // samples per second, not seconds per second
    {L"S/S", L"S/s"},
};

/// Gives the screen spelling of a unit of the table; nothing for any other.
std::optional<std::wstring_view> ScreenSpelling(std::wstring_view unit) {
  const auto remote = std::find_if(std::begin(kUnits), std::end(kUnits),
                                   [&](const Unit& row) { return row.remote == unit; });
  if (remote != std::end(kUnits)) return remote->screen;
  const auto screen = std::find_if(std::begin(kUnits), std::end(kUnits),
                                   [&](const Unit& row) { return row.screen == unit; });
  if (screen != std::end(kUnits)) return screen->screen;
  return std::nullopt;
}

/// Screen spelling of a unit, or of both units of a quotient.
struct ScreenForm {
  std::wstring_view unit;
  std::wstring_view per;  // empty without quotient

  std::wstring Text() const {
    std::wstring text(unit);
    if (!per.empty()) text.append(1, L'/').append(per);
    return text;
  }
};

/// Gives the screen form of a unit or of a quotient of two ("V/DIV", "1/S"); nothing for what is
/// neither.
std::optional<ScreenForm> ScreenFormOf(std::wstring_view unit) {
  if (unit.empty()) return ScreenForm{};
  if (const auto whole = ScreenSpelling(unit)) return ScreenForm{*whole, {}};
  const std::size_t slash = unit.find(L'/');
  if (slash == std::wstring_view::npos || slash != unit.rfind(L'/')) return std::nullopt;
  const std::wstring_view above = unit.substr(0, slash);
  const auto numerator = above == L"1" ? above : ScreenSpelling(above);
  const auto denominator = ScreenSpelling(unit.substr(slash + 1));
  if (!numerator || !denominator) return std::nullopt;
  return ScreenForm{*numerator, *denominator};
}

std::wstring_view ViewOf(const wchar_t* text) {
  return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

class PhysicalUnit final : public Component<Offers<IVorPhysicalUnit, IID_IVorPhysicalUnit>> {
 public:
  HRESULT IsValidUnit(const wchar_t* unit, VARIANT_BOOL* valid) override {
    if (valid == nullptr) return E_POINTER;
    *valid = ScreenFormOf(ViewOf(unit)) ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  }

  HRESULT GetScreenUnit(const wchar_t* remoteUnit, long option, BSTR* screenUnit) override {
    if (screenUnit == nullptr) return E_POINTER;
    *screenUnit = nullptr;
    if (option != 0) return E_INVALIDARG;
    const std::wstring_view unit = ViewOf(remoteUnit);
    const std::optional<ScreenForm> form = ScreenFormOf(unit);
    const std::wstring screen = form ? form->Text() : std::wstring(unit);
    *screenUnit = SysAllocStringLen(screen.data(), static_cast<UINT>(screen.size()));
    return *screenUnit != nullptr ? S_OK : E_OUTOFMEMORY;
  }
};

}  // namespace

HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return cvars::platform::ClassObject<PhysicalUnit>(CLSID_PhysicalUnit, clsid, iid, object);
}
