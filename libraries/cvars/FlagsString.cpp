#include "FlagsString.h"

namespace cvars {
namespace {

struct FlagLetter {
  CVARFLAGS flag;
  wchar_t letter;
};

constexpr FlagLetter kFlagLetters[] = {
    {CVARFLAG_READONLY, L'R'},         {CVARFLAG_HIDDEN, L'H'},  {CVARFLAG_WRAPPING, L'W'},
    {CVARFLAG_LATEUPDATE, L'L'},       {CVARFLAG_GUIONLY, L'G'}, {CVARFLAG_NONVOLATILE, L'N'},
    {CVARFLAG_REVERSEINCREMENT, L'B'}, {CVARFLAG_A, L'A'},       {CVARFLAG_M, L'M'},
    {CVARFLAG_GRAYED, L'Y'},           {CVARFLAG_P, L'P'},       {CVARFLAG_D, L'D'},
    {CVARFLAG_COMPACT, L'C'},          {CVARFLAG_PRIVATE, L'V'}, {CVARFLAG_PUBLIC, L'U'},
};

}  // namespace

std::wstring FlagsString(CVARFLAGS flags) {
  if (flags == 0) return L"-";
  std::wstring text;
  for (const FlagLetter& entry : kFlagLetters) {
    if ((flags & entry.flag) != 0) text.push_back(entry.letter);
  }
  return text;
}

}  // namespace cvars
