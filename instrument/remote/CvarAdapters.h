#pragma once

#include "instrument/remote/CvarAdapter.h"

namespace cvars::remote {

// One adapter per file, which is named after the function. All take DEFault but those of actions
// and pictures, which have none.

/// Commands without value.
const CvarAdapter& ActionAdapter();
/// Bits as texts in quotes or as numbers.
const CvarAdapter& BitPatternAdapter();
/// On and off, written ON or 1 and OFF or 0, and answered 1 or 0.
const CvarAdapter& BoolAdapter();
/// Colours as #H numbers 0xBBGGRR.
const CvarAdapter& ColorAdapter();
/// Numbers with units, and the words that stand for numbers.
const CvarAdapter& NumberAdapter();

/// Choices by any of their spellings, answered by the remote one; UP and DOWN.
const CvarAdapter& EnumAdapter();

/// Registers as #H1F; &h1F is taken too.
const CvarAdapter& RegisterAdapter();

/// Tables as texts in quotes or as blocks.
const CvarAdapter& ArrayAdapter();
/// Pictures as blocks that hold a BMP file.
const CvarAdapter& ImageAdapter();
/// Texts in quotes.
const CvarAdapter& TextAdapter();

}  // namespace cvars::remote
