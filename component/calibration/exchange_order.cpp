#include "component/calibration/exchange_order.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <span>

namespace tof {
namespace {

struct KeyedRow {
  double key;
  std::size_t row;
};

// A set of whole numbers below `size` that counts and finds its members by rank in O(log size): a
// Fenwick tree, whose node i holds how many members lie in the (i & -i) numbers up to i - 1.
class RankSet {
 public:
  static RankSet Empty(std::size_t size) { return RankSet(size); }
  static RankSet Full(std::size_t size) {
    RankSet set(size);
    for (std::size_t i = 1; i <= size; ++i) set.nodes_[i] = LowestBit(i);
    return set;
  }

  void Insert(std::size_t number) {
    for (std::size_t i = number + 1; i < nodes_.size(); i += LowestBit(i)) ++nodes_[i];
  }

  std::size_t CountBelow(std::size_t number) const {
    std::size_t count = 0;
    for (std::size_t i = number; i != 0; i -= LowestBit(i)) count += nodes_[i];
    return count;
  }

  // Takes the member out that has `rank` members below it.
  std::size_t Extract(std::size_t rank) {
    std::size_t number = 0;
    for (std::size_t width = std::bit_floor(nodes_.size() - 1); width != 0; width /= 2) {
      const std::size_t node = number + width;
      if (node < nodes_.size() && nodes_[node] <= rank) {
        rank -= nodes_[node];
        number = node;
      }
    }
    for (std::size_t i = number + 1; i < nodes_.size(); i += LowestBit(i)) --nodes_[i];
    return number;
  }

 private:
  explicit RankSet(std::size_t size) : nodes_(size + 1) {}
  static std::size_t LowestBit(std::size_t i) { return i & (~i + 1); }

  std::vector<std::size_t> nodes_;
};

// The final order of `equals`, rows of one key in their first order. While the smaller rows are
// being drawn, one a step, the equal rows that no smaller row precedes any more form a queue; every
// step moves its front to its back. A row joins the back of the queue after as many steps as there
// are smaller rows before it at first. The queue's last state is the final order. Worked backwards
// from there: the row that joined last stood just before the front, turned back to its arrival.
void OrderEquals(std::span<const KeyedRow> equals, const RankSet& smaller_rows,
                 std::size_t smaller_count, std::span<std::size_t> final_rows) {
  RankSet free_places = RankSet::Full(equals.size());
  std::size_t front = 0;
  std::size_t step = smaller_count;
  for (std::size_t size = equals.size(); size != 0; --size) {
    const std::size_t row = equals[size - 1].row;
    const std::size_t arrival = smaller_rows.CountBelow(row);
    const std::size_t turns = (step - arrival) % size;
    const std::size_t back = (front + size - turns + size - 1) % size;
    final_rows[free_places.Extract(back)] = row;
    front = back + 1 == size ? 0 : back;
    step = arrival;
  }
}

// One past the last row with the key of the row at `first`.
std::size_t EndOfEquals(const std::vector<KeyedRow>& sorted, std::size_t first) {
  std::size_t end = first + 1;
  while (end != sorted.size() && sorted[end].key == sorted[first].key) ++end;
  return end;
}

bool HasEquals(const std::vector<KeyedRow>& sorted) {
  const auto equal_keys = [](const KeyedRow& a, const KeyedRow& b) { return a.key == b.key; };
  return std::adjacent_find(sorted.begin(), sorted.end(), equal_keys) != sorted.end();
}

// The final order of rows that are sorted by key and, within a key, by their first order.
std::vector<std::size_t> OrderOfSorted(const std::vector<KeyedRow>& sorted, std::size_t row_count) {
  std::vector<std::size_t> final_rows(sorted.size());
  for (std::size_t i = 0; i != sorted.size(); ++i) final_rows[i] = sorted[i].row;
  if (!HasEquals(sorted)) return final_rows;

  RankSet smaller_rows = RankSet::Empty(row_count);
  std::size_t end = 0;
  for (std::size_t first = 0; first != sorted.size(); first = end) {
    end = EndOfEquals(sorted, first);
    const std::size_t count = end - first;
    if (count > 1) {
      OrderEquals(std::span(sorted).subspan(first, count), smaller_rows, first,
                  std::span(final_rows).subspan(first, count));
    }
    for (std::size_t i = first; i != end; ++i) smaller_rows.Insert(sorted[i].row);
  }
  return final_rows;
}

}  // namespace

std::vector<std::size_t> ExchangeOrder(const std::vector<double>& keys) {
  std::vector<KeyedRow> sorted;
  sorted.reserve(keys.size());
  for (std::size_t row = 0; row != keys.size(); ++row) {
    if (!std::isnan(keys[row])) sorted.push_back({keys[row], row});
  }
  std::sort(sorted.begin(), sorted.end(), [](const KeyedRow& a, const KeyedRow& b) {
    return a.key < b.key || (a.key == b.key && a.row < b.row);
  });

  const std::vector<std::size_t> final_rows = OrderOfSorted(sorted, keys.size());
  // No comparison with NaN holds: such a row is never exchanged, the others sort around it.
  std::vector<std::size_t> order(keys.size());
  auto next = final_rows.begin();
  for (std::size_t row = 0; row != keys.size(); ++row) {
    order[row] = std::isnan(keys[row]) ? row : *next++;
  }
  return order;
}

}  // namespace tof
