#include "engine/queue_posix.h"

#include <utility>

namespace zq::engine {

void PosixQueue::BeginWrite(File& file, std::uint64_t offsetBytes, std::span<const std::byte> data,
                            std::size_t tag) {
  auto& posix = static_cast<PosixPart&>(file);
  underWay_[tag] = {&posix, offsetBytes, data, {}};
  if (!posix.IsDirect()) return done_.push_back(DoNow(tag));
  ring_->BeginWrite(posix.Fd(), data.data(), data.size(), offsetBytes, tag);
}

void PosixQueue::BeginRead(File& file, std::uint64_t offsetBytes, std::span<std::byte> data,
                           std::size_t tag) {
  auto& posix = static_cast<PosixPart&>(file);
  underWay_[tag] = {&posix, offsetBytes, {}, data};
  if (!posix.IsDirect()) return done_.push_back(DoNow(tag));
  ring_->BeginRead(posix.Fd(), data.data(), data.size(), offsetBytes, tag);
}

TransferQueue::Ended PosixQueue::Wait() {
  if (!done_.empty()) {
    Ended ended = std::move(done_.back());
    done_.pop_back();
    return ended;
  }
  const Uring::Completion completion = ring_->Wait();
  const auto tag = static_cast<std::size_t>(completion.tag);
  // Done again the plain way, which knows what to make of each failure: an alignment that the device
  // finds too small, a kernel whose ring has no such operation, a signal.
  if (completion.result < 0) return DoNow(tag);
  return {tag, static_cast<std::size_t>(completion.result), {}};
}

TransferQueue::Ended PosixQueue::DoNow(std::size_t tag) {
  const Transfer& transfer = underWay_[tag];
  Ended ended;
  ended.tag = tag;
  ended.status = transfer.target.empty()
                     ? transfer.file->Write(transfer.offsetBytes, transfer.source, ended.bytes)
                     : transfer.file->Read(transfer.offsetBytes, transfer.target, ended.bytes);
  return ended;
}

}  // namespace zq::engine
