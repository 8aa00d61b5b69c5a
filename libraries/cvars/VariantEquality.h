#pragma once

#include "Export.h"
#include "Variant.h"

namespace cvars {
/// Says whether two variants hold the same: the same tag and the same value.
///
/// Texts are compared by their characters, case counting, objects and references by their address,
/// real numbers by their bits. Arrays are the same when their dimensions, bounds and elements are.
CVARS_API bool SameVariant(const VARIANT& left, const VARIANT& right);
}  // namespace cvars
