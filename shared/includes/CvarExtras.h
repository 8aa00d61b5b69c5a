#pragma once

#include <string>

#include "BasicTypes.h"

namespace cvars {

/// The parts of a cvar that most cvars never use.
class CvarExtras {
 public:
  std::wstring guiHints;
  HINSTANCE iconModule = nullptr;
  unsigned long iconId = 0;
};

}  // namespace cvars
