#include "hosts/com/automation/safe_array.h"

#include <algorithm>
#include <bit>
#include <vector>

namespace tof::com {
namespace {

constexpr std::size_t kFields = 8;  // of a peak's record, all doubles

SAFEARRAYBOUND BoundOf(std::size_t extent, std::int32_t lower = 0) {
  SAFEARRAYBOUND bound;
  bound.cElements = static_cast<ULONG>(extent);
  bound.lLbound = lower;
  return bound;
}

std::int32_t UpperOf(std::int32_t lower, std::size_t extent) {
  return static_cast<std::int32_t>(std::int64_t{lower} + static_cast<std::int64_t>(extent) - 1);
}

// A record of plain numbers as its elements.
template <class Record, class Element>
using ElementsOf = std::array<Element, sizeof(Record) / sizeof(Element)>;
using Fields = ElementsOf<PeakAttribs, double>;

template <class Record, class Element>
OwnedVariant RecordToVariant(const Record& record, VARTYPE type) {
  const auto elements = std::bit_cast<ElementsOf<Record, Element>>(record);
  OwnedVariant variant;
  const ArrayView view(NewArray(variant, type, {BoundOf(elements.size())}), type, 1);
  std::copy(elements.begin(), elements.end(), view.Elements<Element>());
  return variant;
}

template <class Record, class Element>
Record RecordIn(const VARIANT& value, VARTYPE type) {
  const ArrayView view(ArrayIn(value), type, 1);
  ElementsOf<Record, Element> elements{};
  if (view.Extent(1) != elements.size()) Raise(RunTimeError::kSubscriptOutOfRange);
  std::copy_n(view.Elements<Element>(), elements.size(), elements.begin());
  return std::bit_cast<Record>(elements);
}

// Where field `field` of row `row` of mass `mass` lies in a table of `n` masses: rows run fastest.
std::size_t OffsetOf(std::size_t row, std::size_t mass, std::size_t field, std::size_t n) {
  return row + 2 * (mass + n * field);
}

}  // namespace

SAFEARRAY* ArrayIn(const VARIANT& value) {
  const VARIANT& held = Dereferenced(value);
  if ((V_VT(&held) & VT_ARRAY) == 0) return nullptr;
  if ((V_VT(&held) & VT_BYREF) == 0) return V_ARRAY(&held);
  return V_ARRAYREF(&held) == nullptr ? nullptr : *V_ARRAYREF(&held);
}

ArrayView::ArrayView(SAFEARRAY* array, VARTYPE element, UINT dimensions) : array_(array) {
  VARTYPE type = VT_EMPTY;
  if (array == nullptr || SafeArrayGetDim(array) != dimensions ||
      FAILED(SafeArrayGetVartype(array, &type)) || type != element ||
      FAILED(SafeArrayAccessData(array, &elements_))) {
    Raise(RunTimeError::kTypeMismatch);
  }
}

ArrayView::~ArrayView() {
  SafeArrayUnaccessData(array_);
}

std::int32_t ArrayView::Lower(UINT dimension) const {
  LONG lower = 0;
  Check(SafeArrayGetLBound(array_, dimension, &lower));
  return lower;
}

std::size_t ArrayView::Extent(UINT dimension) const {
  LONG upper = 0;
  Check(SafeArrayGetUBound(array_, dimension, &upper));
  return static_cast<std::size_t>(std::int64_t{upper} - Lower(dimension) + 1);
}

SAFEARRAY* NewArray(OwnedVariant& variant, VARTYPE element,
                    std::initializer_list<SAFEARRAYBOUND> bounds) {
  std::vector<SAFEARRAYBOUND> writable(bounds);
  SAFEARRAY* array = SafeArrayCreate(element, static_cast<UINT>(writable.size()), writable.data());
  if (array == nullptr) Raise(RunTimeError::kOutOfMemory);
  VARIANT* value = variant.Out();
  V_ARRAY(value) = array;
  V_VT(value) = static_cast<VARTYPE>(VT_ARRAY | element);
  return array;
}

OwnedVariant ToVariant(const BoundedArray<double>& values) {
  OwnedVariant variant;
  const std::int32_t lower = values.IsDimensioned() ? values.LBound() : 0;
  const ArrayView view(NewArray(variant, VT_R8, {BoundOf(values.size(), lower)}), VT_R8, 1);
  std::copy(values.begin(), values.end(), view.Elements<double>());
  return variant;
}

OwnedVariant ToVariant(const BoundedArray2D<double>& values) {
  const auto extent = [&](int dimension) {
    return ExtentOf(values.LBound(dimension), values.UBound(dimension), IfEmpty::kIsAllowed);
  };
  OwnedVariant variant;
  const ArrayView view(
      NewArray(variant, VT_R8,
               {BoundOf(extent(1), values.LBound(1)), BoundOf(extent(2), values.LBound(2))}),
      VT_R8, 2);
  double* to = view.Elements<double>();
  for (std::int32_t j = values.LBound(2); j <= values.UBound(2); ++j) {
    for (std::int32_t i = values.LBound(1); i <= values.UBound(1); ++i) *to++ = values(i, j);
  }
  return variant;
}

OwnedVariant ToVariant(const PeakAttribsTable& table) {
  const std::size_t n = ExtentOf(table.LBound(2), table.UBound(2), IfEmpty::kIsAllowed);
  OwnedVariant variant;
  const ArrayView view(NewArray(variant, VT_R8, {BoundOf(2), BoundOf(n), BoundOf(kFields)}), VT_R8,
                       3);
  double* elements = view.Elements<double>();
  for (std::size_t row = 0; row < 2; ++row) {
    for (std::size_t mass = 0; mass < n; ++mass) {
      const auto fields =
          std::bit_cast<Fields>(table(table.LBound(1) + static_cast<std::int32_t>(row),
                                      table.LBound(2) + static_cast<std::int32_t>(mass)));
      for (std::size_t f = 0; f < kFields; ++f) elements[OffsetOf(row, mass, f, n)] = fields[f];
    }
  }
  return variant;
}

OwnedVariant ToVariant(const CalInfo& info) {
  return RecordToVariant<CalInfo, std::byte>(info, VT_UI1);
}
OwnedVariant ToVariant(const CoefficientRecord& record) {
  return RecordToVariant<CoefficientRecord, double>(record, VT_R8);
}
OwnedVariant ToVariant(const PeakRecord& record) {
  return RecordToVariant<PeakRecord, double>(record, VT_R8);
}

BoundedArray<double> DoublesIn(const VARIANT& value) {
  const ArrayView view(ArrayIn(value), VT_R8, 1);
  const double* first = view.Elements<double>();
  return BoundedArray<double>(std::vector<double>(first, first + view.Extent(1)), view.Lower(1));
}

BoundedArray2D<double> Doubles2DIn(const VARIANT& value) {
  const ArrayView view(ArrayIn(value), VT_R8, 2);
  const Bounds first{view.Lower(1), UpperOf(view.Lower(1), view.Extent(1))};
  const Bounds second{view.Lower(2), UpperOf(view.Lower(2), view.Extent(2))};
  BoundedArray2D<double> values(first, second, IfEmpty::kIsAllowed);
  const double* from = view.Elements<double>();
  for (std::int32_t j = second.lower; j <= second.upper; ++j) {
    for (std::int32_t i = first.lower; i <= first.upper; ++i) values(i, j) = *from++;
  }
  return values;
}

PeakAttribsTable PeakAttribsIn(const VARIANT& value) {
  const ArrayView view(ArrayIn(value), VT_R8, 3);
  const std::size_t n = view.Extent(2);
  if (view.Extent(1) != 2 || view.Extent(3) != kFields) Raise(RunTimeError::kSubscriptOutOfRange);
  PeakAttribsTable table({0, 1}, {0, UpperOf(0, n)}, IfEmpty::kIsAllowed);
  const double* elements = view.Elements<double>();
  for (std::size_t row = 0; row < 2; ++row) {
    for (std::size_t mass = 0; mass < n; ++mass) {
      Fields fields{};
      for (std::size_t f = 0; f < kFields; ++f) fields[f] = elements[OffsetOf(row, mass, f, n)];
      table(static_cast<std::int32_t>(row), static_cast<std::int32_t>(mass)) =
          std::bit_cast<PeakAttribs>(fields);
    }
  }
  return table;
}

CalInfo CalInfoIn(const VARIANT& value) {
  return RecordIn<CalInfo, std::byte>(value, VT_UI1);
}
CoefficientRecord CoefficientRecordIn(const VARIANT& value) {
  return RecordIn<CoefficientRecord, double>(value, VT_R8);
}
PeakRecord PeakRecordIn(const VARIANT& value) {
  return RecordIn<PeakRecord, double>(value, VT_R8);
}

}  // namespace tof::com
