// Which types of cvars have an adapter of their own.

#include "instrument/remote/CvarAdapters.h"

namespace cvars::remote {
namespace {

struct AdapterRow {
  std::wstring_view type;
  const CvarAdapter& (*adapter)();
};

constexpr AdapterRow kAdapters[] = {
    {L"Action", ActionAdapter},       {L"BitPattern", BitPatternAdapter},
    {L"Bool", BoolAdapter},           {L"Color", ColorAdapter},
    {L"Double", NumberAdapter},       {L"DoubleLockstep", NumberAdapter},
    {L"Enum", EnumAdapter},           {L"FileName", TextAdapter},
    {L"Image", ImageAdapter},         {L"Integer", NumberAdapter},
    {L"Long Integer", NumberAdapter}, {L"ObjectName", TextAdapter},
    {L"Register", RegisterAdapter},   {L"SafeArray", ArrayAdapter},
    {L"String", TextAdapter},
};

}  // namespace

const CvarAdapter& AdapterOf(std::wstring_view type) {
  for (const AdapterRow& row : kAdapters) {
    if (row.type == type) return row.adapter();
  }
  static const CvarAdapter textAdapter;
  return textAdapter;
}

}  // namespace cvars::remote
