#pragma once

#include <string>
#include <vector>

#include "ColumnRange.h"
#include "VariantTable.h"

namespace cvars {

/// Reads rows separated by ";" of elements separated by ",": numbers with remote prefixes as VT_R8,
/// anything else as its text.
///
/// One row gives an array of one dimension, several rows a table of columns and rows without the
/// empty rows; rows that are shorter than the longest end in empty elements. Separators alone give
/// an empty array.
CVARS_API VariantTable TableFromText(std::wstring_view text);

/// Writes a table as text; one of more than two dimensions gives the empty text.
/// @param ranges  a column that has one is written with the digits that its grain can change.
CVARS_API std::wstring TextFromTable(const VariantTable& table,
                                     const std::vector<SColRangeDesc>& ranges);

/// Reads columns separated by ";" of "type,minimum,maximum,grain". What does not read as a number
/// keeps its default, as a column of another number of fields does.
CVARS_API std::vector<SColRangeDesc> RangesFromText(std::wstring_view text);
/// Writes ranges in the form that RangesFromText reads.
CVARS_API std::wstring TextFromRanges(const std::vector<SColRangeDesc>& ranges);

}  // namespace cvars
