#include "engine/transfers_win32.h"

#include <algorithm>
#include <chrono>

#include "engine/file_win32.h"

namespace zq::engine::win32 {
namespace {

class WindowsQueue final : public TransferQueue {
 public:
  static constexpr std::size_t kDepth = 32;
  static_assert(kDepth <= MAXIMUM_WAIT_OBJECTS);

  // False if the system has no events to give.
  bool Prepare() {
    for (OverlappedTransfer& transfer : transfers_) {
      if (!transfer.Prepare().Ok()) return false;
    }
    return true;
  }

  std::size_t Depth() const override { return kDepth; }

  void BeginWrite(File& file, std::uint64_t offsetBytes, std::span<const std::byte> data,
                  std::size_t tag) override {
    order_[count_++] = tag;
    transfers_[tag].BeginWrite(static_cast<WindowsFile&>(file).Handle(), offsetBytes, data);
  }
  void BeginRead(File& file, std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t tag) override {
    order_[count_++] = tag;
    transfers_[tag].BeginRead(static_cast<WindowsFile&>(file).Handle(), offsetBytes, data);
  }

  Ended Wait() override {
    Ended ended;
    TakeEnded(std::min(FirstEnded(INFINITE), count_ - 1), ended);
    return ended;
  }
  bool WaitFor(std::chrono::milliseconds limit, Ended& ended) override {
    const std::size_t index = FirstEnded(static_cast<DWORD>(limit.count()));
    if (index == count_) return false;
    TakeEnded(index, ended);
    return true;
  }
  void GiveUp() override {
    for (std::size_t i = 0; i < count_; ++i) transfers_[order_[i]].GiveUp();
  }

 private:
  void TakeEnded(std::size_t index, Ended& ended) {
    ended.tag = order_[index];
    std::copy(order_ + index + 1, order_ + count_, order_ + index);
    --count_;
    ended.status = transfers_[ended.tag].End(ended.bytes);
  }

  // The index in order_ of one that needs no more waiting; count_ after `limit` without one.
  std::size_t FirstEnded(DWORD limit) const {
    HANDLE events[kDepth];
    for (std::size_t i = 0; i < count_; ++i) {
      if (!transfers_[order_[i]].IsUnderWay()) return i;
      events[i] = transfers_[order_[i]].Event();
    }
    const DWORD result = ::WaitForMultipleObjects(static_cast<DWORD>(count_), events, FALSE, limit);
    if (result < WAIT_OBJECT_0 + count_) return result - WAIT_OBJECT_0;
    return result == WAIT_TIMEOUT ? count_ : 0;
  }

  OverlappedTransfer transfers_[kDepth];
  std::size_t order_[kDepth] = {};  // the tags of those under way, the oldest first
  std::size_t count_ = 0;
};

}  // namespace

std::unique_ptr<TransferQueue> MakeWindowsQueue() {
  auto queue = std::make_unique<WindowsQueue>();
  if (!queue->Prepare()) return nullptr;
  return queue;
}

}  // namespace zq::engine::win32
