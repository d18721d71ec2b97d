// How many blocks of memory the program holds.
#pragma once

#include <cstdint>

namespace tof::fakes {

// Counted by this program's own operator new and delete. Blocks, not bytes: a text that grows stays
// one block.
std::int64_t LiveBlocks() noexcept;

}  // namespace tof::fakes
