// The program's memory: how many blocks it holds, and allocations that fail on request. Both belong
// to operator new and delete of this program.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>

namespace tof::fakes {

// Blocks, not bytes: a text that grows stays one block.
std::int64_t LiveBlocks() noexcept;

// While it lives, allocation n (from 0) of those made since its construction fails, once.
class FailingAllocation {
 public:
  static constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();

  // `on_failure` is called right before the failure; it must not allocate.
  explicit FailingAllocation(std::int64_t n, std::function<void()> on_failure = {});
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  // Allocations asked for so far, the failed one among them.
  std::int64_t Count() const noexcept;

 private:
  std::function<void()> on_failure_;
};

}  // namespace tof::fakes
