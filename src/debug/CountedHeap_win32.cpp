// new and delete of a program that counts what it has: linked into the program itself, in builds with
// ZQ_COUNTERS alone. Those for arrays and those that don't throw come back to these.
#include <malloc.h>

#include <cstdlib>
#include <new>

#include "debug/LiveCount.h"

namespace {

void CountBlock(void* block, int sign) {
  zq::debug::Count(zq::debug::Kind::HeapBlock, sign);
  zq::debug::Count(zq::debug::Kind::HeapByte, sign * static_cast<std::ptrdiff_t>(::_msize(block)));
}

}  // namespace

void* operator new(std::size_t bytes) {
  for (;;) {
    if (void* const block = std::malloc(bytes == 0 ? 1 : bytes)) {
      CountBlock(block, 1);
      return block;
    }
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

void operator delete(void* block) noexcept {
  if (block == nullptr) return;
  CountBlock(block, -1);
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}
