// Arrays with lower bounds whose every access is checked (error 9, "Subscript out of range").
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <utility>
#include <vector>

#include "component/automation/error.h"

namespace tof {

// What a re-dimension to an upper bound one below the lower bound gives. Two or more below is
// error 9 everywhere.
enum class IfEmpty { kIsAnError, kIsAllowed };

// Number of elements of a dimension; raises error 9 for bounds that cannot be dimensioned.
inline std::size_t ExtentOf(std::int32_t lower, std::int32_t upper, IfEmpty if_empty) {
  const std::int64_t extent = std::int64_t{upper} - lower + 1;
  if (extent < 0 || (extent == 0 && if_empty == IfEmpty::kIsAnError)) {
    Raise(RunTimeError::kSubscriptOutOfRange);
  }
  return static_cast<std::size_t>(extent);
}

// One dimension. An array that was never dimensioned has no bounds: asking for them is error 9.
template <class T>
class BoundedArray {
 public:
  BoundedArray() = default;
  BoundedArray(std::int32_t lower, std::int32_t upper, IfEmpty if_empty = IfEmpty::kIsAnError) {
    ReDim(lower, upper, if_empty);
  }
  // Elements from index 0.
  explicit BoundedArray(std::vector<T> elements, std::int32_t lower = 0)
      : elements_(std::move(elements)), lower_(lower), dimensioned_(true) {}
  BoundedArray(std::initializer_list<T> elements) : BoundedArray(std::vector<T>(elements)) {}

  // New bounds, every element as newly made; earlier contents are discarded, and kept on an error.
  void ReDim(std::int32_t lower, std::int32_t upper, IfEmpty if_empty = IfEmpty::kIsAnError) {
    elements_ = std::vector<T>(ExtentOf(lower, upper, if_empty));
    lower_ = lower;
    dimensioned_ = true;
  }

  bool IsDimensioned() const noexcept { return dimensioned_; }
  std::int32_t LBound() const {
    RequireDimensioned();
    return lower_;
  }
  std::int32_t UBound() const {
    RequireDimensioned();
    return static_cast<std::int32_t>(lower_ + static_cast<std::int64_t>(elements_.size()) - 1);
  }

  T& operator()(std::int32_t index) { return elements_[OffsetOf(index)]; }
  const T& operator()(std::int32_t index) const { return elements_[OffsetOf(index)]; }

  std::size_t size() const noexcept { return elements_.size(); }
  auto begin() noexcept { return elements_.begin(); }
  auto end() noexcept { return elements_.end(); }
  auto begin() const noexcept { return elements_.begin(); }
  auto end() const noexcept { return elements_.end(); }

  friend bool operator==(const BoundedArray&, const BoundedArray&) = default;

 private:
  void RequireDimensioned() const {
    if (!dimensioned_) Raise(RunTimeError::kSubscriptOutOfRange);
  }
  std::size_t OffsetOf(std::int32_t index) const {
    const std::int64_t offset = std::int64_t{index} - lower_;
    if (offset < 0 || static_cast<std::size_t>(offset) >= elements_.size()) {
      Raise(RunTimeError::kSubscriptOutOfRange);
    }
    return static_cast<std::size_t>(offset);
  }

  std::vector<T> elements_;
  std::int32_t lower_ = 0;
  bool dimensioned_ = false;
};

struct Bounds {
  std::int32_t lower = 0;
  std::int32_t upper = -1;
  friend bool operator==(const Bounds&, const Bounds&) = default;
};

// Two dimensions, [first, second], numbered 1 and 2 as their bounds are asked for.
template <class T>
class BoundedArray2D {
 public:
  BoundedArray2D() = default;
  BoundedArray2D(Bounds first, Bounds second, IfEmpty if_empty = IfEmpty::kIsAnError) {
    ReDim(first, second, if_empty);
  }

  // New bounds, every element as newly made; earlier contents are discarded, and kept on an error.
  void ReDim(Bounds first, Bounds second, IfEmpty if_empty = IfEmpty::kIsAnError) {
    const std::size_t rows = ExtentOf(first.lower, first.upper, if_empty);
    const std::size_t columns = ExtentOf(second.lower, second.upper, if_empty);
    if (columns != 0 && rows > std::numeric_limits<std::size_t>::max() / sizeof(T) / columns) {
      Raise(RunTimeError::kOutOfMemory);
    }
    elements_ = std::vector<T>(rows * columns);
    bounds_[0] = first;
    bounds_[1] = second;
    dimensioned_ = true;
  }

  bool IsDimensioned() const noexcept { return dimensioned_; }
  std::int32_t LBound(int dimension) const { return BoundsOf(dimension).lower; }
  std::int32_t UBound(int dimension) const { return BoundsOf(dimension).upper; }

  T& operator()(std::int32_t i, std::int32_t j) { return elements_[OffsetOf(i, j)]; }
  const T& operator()(std::int32_t i, std::int32_t j) const { return elements_[OffsetOf(i, j)]; }

  friend bool operator==(const BoundedArray2D&, const BoundedArray2D&) = default;

 private:
  const Bounds& BoundsOf(int dimension) const {
    if (!dimensioned_ || dimension < 1 || dimension > 2) Raise(RunTimeError::kSubscriptOutOfRange);
    return bounds_[static_cast<std::size_t>(dimension - 1)];
  }
  std::size_t OffsetOf(std::int32_t i, std::int32_t j) const {
    if (!dimensioned_ || i < bounds_[0].lower || i > bounds_[0].upper || j < bounds_[1].lower ||
        j > bounds_[1].upper) {
      Raise(RunTimeError::kSubscriptOutOfRange);
    }
    const std::int64_t columns = std::int64_t{bounds_[1].upper} - bounds_[1].lower + 1;
    return static_cast<std::size_t>((std::int64_t{i} - bounds_[0].lower) * columns +
                                    (std::int64_t{j} - bounds_[1].lower));
  }

  std::vector<T> elements_;
  std::array<Bounds, 2> bounds_;
  bool dimensioned_ = false;
};

}  // namespace tof
