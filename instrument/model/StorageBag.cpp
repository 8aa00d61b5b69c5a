#include "Cvars.h"
#include "instrument/model/Bags.h"

namespace cvars::model {
namespace {

constexpr wchar_t kRoot[] = L"D:\\";
constexpr wchar_t kFolder[] = L"D:\\Waveforms";
constexpr int kLongestPath = 260;

struct FileNameRow {
  const wchar_t* name;
  const wchar_t* defaultValue;
  const wchar_t* filters;
  const wchar_t* format;
  int directoryOnly;
};

constexpr FileNameRow kFileNames[] = {
    {L"Folder", kFolder, L"", L"path", 1},
    {L"Waveform File|file", L"D:\\Waveforms\\wave.trc", L"Waveforms (*.trc)|*.trc", L"fullfilename",
     0},
    {L"Setup File|setup", L"D:\\Setups\\scope.lss", L"Set-ups (*.lss)|*.lss", L"fullfilename", 0},
};

}  // namespace

CComPtr<CCvarBag> MakeStorageBag() {
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Storage", nullptr);
  for (const FileNameRow& row : kFileNames) {
    const auto cvar = CvarObject<CCvarFileName>::Create();
    cvar->Initialize(row.name, row.defaultValue, kRoot, kFolder, row.filters, row.format,
                     kLongestPath, row.directoryOnly, 0, CVARFLAG_NONVOLATILE, nullptr, 0,
                     REPLICATE_VALUE | REPLICATE_REQUESTED);
    (void)bag->Add(cvar);  // a new cvar has no parent yet
  }
  return bag;
}

}  // namespace cvars::model
