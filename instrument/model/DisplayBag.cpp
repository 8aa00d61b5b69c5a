#include <stdexcept>
#include <string>

#include "Cvars.h"
#include "instrument/model/Bags.h"
#include "instrument/model/DoubleCvars.h"

namespace cvars::model {
namespace {

constexpr const wchar_t* kShown[] = {L"Scale", L"Offset", L"Position"};

// Range and unit come from the channel with the first copy.
constexpr DoubleRow kUnknown = {L"", 0, -1e9, 1e9, 0, L""};

// What was made of a request is shown, not the request.
constexpr CVARREPLICATIONFLAGS kCopies =
    REPLICATE_VALUE | REPLICATE_RANGE | REPLICATE_UNIT | REPLICATE_OVERRIDE_READONLY;
constexpr NOTIFYTYPE kEverything = static_cast<NOTIFYTYPE>(0xFFFFFFFFu);

void Follow(CvarObject<CCvarDouble>& shown, IVorCvar* setting) {
  const auto start = [&](CVARREPLICATIONCONNECTIONATTRIBUTES manner) {
    return shown.StartCvarReplication(setting, manner, REPLICATIONCONNECTION_NONE,
                                      REPLICATIONCOPY_FROM_OTHER, kEverything);
  };
  if (FAILED(start(REPLICATIONCONNECTION_ASYNCHRONOUS)) &&
      FAILED(start(REPLICATIONCONNECTION_SYNCHRONOUS))) {
    throw std::logic_error("the display does not follow a channel");
  }
}

}  // namespace

CComPtr<CCvarBag> MakeDisplayBag(std::span<const CComPtr<CCvarBag>> channels) {
  CComPtr<CCvarBag> display = CCvarBag::Create(L"Display", nullptr);
  int number = 0;
  for (const CComPtr<CCvarBag>& channel : channels) {
    ++number;
    for (const wchar_t* const setting : kShown) {
      const CComPtr<IVorCvar> source = channel->Find(setting);
      if (source == nullptr) throw std::logic_error("a channel lacks what the display shows");
      const std::wstring name = setting + std::to_wstring(number);
      DoubleRow row = kUnknown;
      row.name = name.c_str();
      const CComPtr<CvarObject<CCvarDouble>> shown = MakeDoubleCvar(row);
      shown->SetReadOnly(1);
      shown->SetFlags(CVARFLAG_COMPACT, true);
      shown->SetReplicationFlags(kCopies);
      Follow(*shown, source);
      if (display->Add(shown) != S_OK) throw std::logic_error("a cvar does not fit into its bag");
    }
  }
  return display;
}

}  // namespace cvars::model
