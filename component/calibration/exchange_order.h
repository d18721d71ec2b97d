// The row order that the plain exchange sort gives, without its quadratic cost.
#pragma once

#include <cstddef>
#include <vector>

namespace tof {

// The rows of a table are exchanged while
//   for i = first to last - 1, for j = i + 1 to last: if key(i) > key(j), exchange rows i and j
// runs over it. Returns, for every final position, the position its row had at first (both from 0).
// The order is exactly that of the exchanges, for every input: this sort is not stable, rows of
// equal keys end in an order of its own, and a row whose key is NaN stays where it is. O(n log n)
// time and O(n) memory in every case; docs/candidate_sort.md says why the order is the same.
std::vector<std::size_t> ExchangeOrder(const std::vector<double>& keys);

}  // namespace tof
