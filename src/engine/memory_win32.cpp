// Memory for transfers on Windows. Large pages need a privilege there that hardly anybody has.
#include <windows.h>

#include <new>

#include "debug/LiveCount.h"
#include "engine/AlignedBuffer.h"

namespace zq::engine {

AlignedBuffer::AlignedBuffer(std::size_t sizeBytes, std::size_t) : sizeBytes_(sizeBytes) {
  mapped_ = ::VirtualAlloc(nullptr, sizeBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
  if (mapped_ == nullptr) throw std::bad_alloc();
  bytes_ = static_cast<std::byte*>(mapped_);
  debug::Count(debug::Kind::TransferBuffer, 1);
}

AlignedBuffer::~AlignedBuffer() {
  ::VirtualFree(mapped_, 0, MEM_RELEASE);
  debug::Count(debug::Kind::TransferBuffer, -1);
}

}  // namespace zq::engine
