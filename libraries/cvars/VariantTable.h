#pragma once

#include <cstddef>
#include <span>

#include "CComSafeArray.h"
#include "Export.h"

namespace cvars {

/// An owned table of variants: the first index is the column, the second the row.
using VariantTable = CComSafeArray<VARIANT>;

/// An array of one dimension without elements, lower bound 0.
CVARS_API VariantTable EmptyTable();

/// Copies an array of any element type into a table of the same bounds.
///
/// @param array         borrowed; null gives an empty table.
/// @param[out] table    untouched on failure.
/// @retval E_INVALIDARG  elements of a type that no variant holds
CVARS_API HRESULT CopyToTable(const SAFEARRAY* array, VariantTable* table);

/// The elements of a table in memory order: columns run fastest.
///
/// Keeps the array locked for as long as it lives.
class CVARS_API TableElements {
 public:
  explicit TableElements(const VariantTable& table);
  ~TableElements();
  TableElements(const TableElements&) = delete;
  TableElements& operator=(const TableElements&) = delete;

  std::span<VARIANT> All() const noexcept { return {m_data, m_count}; }
  /// Elements of a row; a table of one dimension is one row.
  std::size_t Columns() const noexcept { return m_columns; }

 private:
  SAFEARRAY* m_array;
  VARIANT* m_data = nullptr;
  std::size_t m_count = 0;
  std::size_t m_columns = 0;
};

/// Says whether two tables have the same dimensions, lower bounds and extents.
CVARS_API bool SameShape(const VariantTable& a, const VariantTable& b);

/// Makes a table of empty variants with the shape of another.
CVARS_API VariantTable TableLike(const VariantTable& model);

}  // namespace cvars
