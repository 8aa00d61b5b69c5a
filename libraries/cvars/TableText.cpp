#include "TableText.h"

#include <algorithm>
#include <cstdio>

#include "NumericText.h"
#include "TextPieces.h"

namespace cvars {
namespace {

constexpr wchar_t kRowSeparator = L';';
constexpr wchar_t kElementSeparator = L',';
constexpr std::size_t kRangeFields = 4;

bool ReadNumber(std::wstring_view text, double* number) {
  return ParseNumber(std::wstring(text).c_str(), {}, kRemotePrefixes, number) == S_OK;
}

CComVariant ElementFrom(std::wstring_view text) {
  double number = 0;
  if (ReadNumber(text, &number)) return CComVariant(number);
  return CComVariant(CComBSTR(text));
}

bool SeparatorsAlone(std::wstring_view text) {
  return std::all_of(text.begin(), text.end(), [](wchar_t character) {
    return character == kRowSeparator || character == kElementSeparator;
  });
}

void AppendElement(std::wstring& text, const VARIANT& element, const SColRangeDesc* range) {
  CComVariant value;
  if (SUCCEEDED(VariantChangeTypeEx(&value, &element, LOCALE_ENGLISH_US, 0, VT_R8))) {
    if (range != nullptr) {
      AppendNumber(text, value.dblVal, range->grain, {}, NumberStyle::kRemoteNoUnit, kNumberWidth);
    } else {
      AppendGeneral(text, value.dblVal);
    }
    return;
  }
  if (SUCCEEDED(VariantChangeTypeEx(&value, &element, LOCALE_ENGLISH_US, VARIANT_NOUSEROVERRIDE,
                                    VT_BSTR))) {
    text += std::wstring_view(value.bstrVal == nullptr ? L"" : value.bstrVal,
                              SysStringLen(value.bstrVal));
    return;
  }
  wchar_t unsupported[48];
  std::swprintf(unsupported, std::size(unsupported), L"unsupported-variant-type(0x%08x)",
                static_cast<unsigned int>(element.vt));
  text += unsupported;
}

ULONG ReadType(std::wstring_view text, ULONG otherwise) {
  const std::size_t start = text.find_first_not_of(L" \t");
  if (start == std::wstring_view::npos) return otherwise;
  ULONG type = 0;
  std::size_t at = start;
  for (; at < text.size() && text[at] >= L'0' && text[at] <= L'9'; ++at) {
    type = type * 10 + static_cast<ULONG>(text[at] - L'0');
  }
  return at == start ? otherwise : type;
}

}  // namespace

VariantTable TableFromText(std::wstring_view text) {
  if (SeparatorsAlone(text)) return EmptyTable();
  std::vector<std::wstring_view> rows = SplitText(text, kRowSeparator);
  const bool oneRow = rows.size() == 1;
  std::erase_if(rows, [](std::wstring_view row) { return row.empty(); });

  std::vector<std::vector<std::wstring_view>> cells;
  std::size_t columns = 0;
  for (const std::wstring_view row : rows) {
    cells.push_back(SplitText(row, kElementSeparator));
    columns = std::max(columns, cells.back().size());
  }
  SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(columns), 0},
                              {static_cast<ULONG>(cells.size()), 0}};
  VariantTable table;
  if (FAILED(table.Create(bounds, oneRow ? 1 : 2))) throw std::bad_alloc();
  const TableElements elements(table);
  for (std::size_t row = 0; row < cells.size(); ++row) {
    for (std::size_t column = 0; column < cells[row].size(); ++column) {
      CComVariant element = ElementFrom(cells[row][column]);
      (void)element.Detach(&elements.All()[row * columns + column]);
    }
  }
  return table;
}

std::wstring TextFromTable(const VariantTable& table, const std::vector<SColRangeDesc>& ranges) {
  std::wstring text;
  const SAFEARRAY* const array = table;
  if (array == nullptr || array->cDims > 2) return text;
  const TableElements elements(table);
  std::size_t column = 0;
  for (const VARIANT& element : elements.All()) {
    if (column == elements.Columns()) {
      text += kRowSeparator;
      column = 0;
    } else if (column != 0) {
      text += kElementSeparator;
    }
    AppendElement(text, element, column < ranges.size() ? &ranges[column] : nullptr);
    ++column;
  }
  return text;
}

std::vector<SColRangeDesc> RangesFromText(std::wstring_view text) {
  std::vector<SColRangeDesc> ranges;
  if (text.empty()) return ranges;
  for (const std::wstring_view column : SplitText(text, kRowSeparator)) {
    SColRangeDesc range;
    const std::vector<std::wstring_view> fields = SplitText(column, kElementSeparator);
    if (fields.size() == kRangeFields) {
      range.elementType = ReadType(fields[0], range.elementType);
      (void)ReadNumber(fields[1], &range.minimum);  // the default stays
      (void)ReadNumber(fields[2], &range.maximum);
      (void)ReadNumber(fields[3], &range.grain);
    }
    ranges.push_back(range);
  }
  return ranges;
}

std::wstring TextFromRanges(const std::vector<SColRangeDesc>& ranges) {
  TextJoiner columns(kRowSeparator);
  for (const SColRangeDesc& range : ranges) {
    std::wstring& text = columns.Begin();
    AppendDecimal(text, static_cast<std::int32_t>(range.elementType));
    for (const double number : {range.minimum, range.maximum, range.grain}) {
      text += kElementSeparator;
      AppendGeneral(text, number);
    }
  }
  return columns.Text();
}

}  // namespace cvars
