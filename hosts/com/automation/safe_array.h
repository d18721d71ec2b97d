// Safe arrays of plain elements, and the records that cross the boundary as such arrays.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "component/automation/bounded_array.h"
#include "component/calibrator/mass_time_library.h"
#include "component/calibrator/peak_records.h"
#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/owned_variant.h"

namespace tof::com {

// The array that a variant holds, by reference too; none when it holds no array or one without a
// descriptor.
SAFEARRAY* ArrayIn(const VARIANT& value);

// The elements of a safe array for as long as the view lives. Error 13 when the array is none or
// has another element type or number of dimensions.
class ArrayView {
 public:
  ArrayView(SAFEARRAY* array, VARTYPE element, UINT dimensions);
  ~ArrayView();
  ArrayView(const ArrayView&) = delete;
  ArrayView& operator=(const ArrayView&) = delete;

  // Of a dimension counted from 1; the first runs fastest in memory.
  std::int32_t Lower(UINT dimension) const;
  std::size_t Extent(UINT dimension) const;

  template <class T>
  T* Elements() const {
    return static_cast<T*>(elements_);
  }

 private:
  SAFEARRAY* array_;
  void* elements_ = nullptr;
};

// A new array, its elements 0; `variant` owns it. Error 7 when there is no memory for it.
SAFEARRAY* NewArray(OwnedVariant& variant, VARTYPE element,
                    std::initializer_list<SAFEARRAYBOUND> bounds);

OwnedVariant ToVariant(const BoundedArray<double>& values);
OwnedVariant ToVariant(const BoundedArray2D<double>& values);
OwnedVariant ToVariant(const PeakAttribsTable& table);  // [row, mass, field]
OwnedVariant ToVariant(const CalInfo& info);            // 48 bytes
OwnedVariant ToVariant(const CoefficientRecord& record);
OwnedVariant ToVariant(const PeakRecord& record);  // eight doubles

// The reverse. Error 13 for anything but the form above; a dimension of another size than the
// record has is error 9.
BoundedArray<double> DoublesIn(const VARIANT& value);
BoundedArray2D<double> Doubles2DIn(const VARIANT& value);
PeakAttribsTable PeakAttribsIn(const VARIANT& value);
CalInfo CalInfoIn(const VARIANT& value);
CoefficientRecord CoefficientRecordIn(const VARIANT& value);
PeakRecord PeakRecordIn(const VARIANT& value);

}  // namespace tof::com
