#include "tests/component/soak/live_blocks.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::int64_t> live_blocks{0};

}  // namespace

std::int64_t tof::fakes::LiveBlocks() noexcept {
  return live_blocks;
}

// Every other form of new and delete comes down to these, but for over-aligned types, which nothing
// here has.
void* operator new(std::size_t size) {
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  ++live_blocks;
  return block;
}

void operator delete(void* block) noexcept {
  if (block != nullptr) --live_blocks;
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}
