#include "tests/component/soak/memory.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

namespace tof::fakes {
namespace {

std::atomic<std::int64_t> live_blocks{0};

struct Watch {
  bool on = false;
  std::int64_t count = 0;
  std::int64_t failing = FailingAllocation::kNone;
  const std::function<void()>* on_failure = nullptr;
};
Watch watch;  // the tests have one thread

bool MustFail() {
  if (!watch.on || watch.count++ != watch.failing) return false;
  if (*watch.on_failure) (*watch.on_failure)();
  return true;
}

}  // namespace

std::int64_t LiveBlocks() noexcept {
  return live_blocks;
}

FailingAllocation::FailingAllocation(std::int64_t n, std::function<void()> on_failure)
    : on_failure_(std::move(on_failure)) {
  watch = {.on = true, .failing = n, .on_failure = &on_failure_};
}
FailingAllocation::~FailingAllocation() {
  watch.on = false;
}
std::int64_t FailingAllocation::Count() const noexcept {
  return watch.count;
}

}  // namespace tof::fakes

// Every other form of new and delete comes down to these, but for over-aligned types, which nothing
// here has.
void* operator new(std::size_t size) {
  void* block = tof::fakes::MustFail() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  ++tof::fakes::live_blocks;
  return block;
}

void operator delete(void* block) noexcept {
  if (block != nullptr) --tof::fakes::live_blocks;
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}
