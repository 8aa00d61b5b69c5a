#pragma once

#include "instrument/remote/CvarAdapter.h"

namespace cvars::remote {

// One adapter per file, which is named after the function.

/// Numbers with units, and the words that stand for numbers.
const CvarAdapter& DoubleAdapter();

/// Tables as texts in quotes or as blocks, and DEFault.
const CvarAdapter& ArrayAdapter();
/// Texts in quotes, and DEFault.
const CvarAdapter& TextAdapter();

}  // namespace cvars::remote
