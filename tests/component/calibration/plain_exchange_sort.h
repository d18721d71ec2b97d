// The exchange sort as it is defined, comparison by comparison: what the quick order must equal.
#pragma once

#include <cstddef>
#include <utility>

namespace tof {

// `rows` is anything with size() and indexing from 0.
template <class Rows, class Key, class Exchange>
void PlainExchangeSort(Rows& rows, Key key, Exchange exchange) {
  for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
    for (std::size_t j = i + 1; j < rows.size(); ++j) {
      if (key(rows[i]) > key(rows[j])) exchange(rows[i], rows[j]);
    }
  }
}

template <class Rows, class Key>
void PlainExchangeSort(Rows& rows, Key key) {
  PlainExchangeSort(rows, key, [](auto& a, auto& b) { std::swap(a, b); });
}

}  // namespace tof
