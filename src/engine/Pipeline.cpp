#include "engine/Pipeline.h"

#include <algorithm>
#include <chrono>

namespace zq::engine {
namespace {

// A share that has died answers after minutes, and a cancel has to get through meanwhile.
constexpr std::chrono::milliseconds kLongestSilence{100};

}  // namespace

Pipeline::Pipeline(Device& device, const Clock& clock, Pace& pace)
    : clock_(clock),
      pace_(pace),
      queue_(device.MakeQueue()),
      depth_(std::min(queue_->Depth(), Pace::kMostTransfers)),
      memory_(depth_, std::min(depth_, Pace::kLargestUnits)) {
  for (std::size_t i = depth_; i > 0; --i) free_.push_back(i - 1);
}

std::span<std::byte> Pipeline::MakeRoom(std::size_t sizeBytes) {
  while (underWay_ > 0) {
    const std::size_t most = std::min(depth_, pace_.TransfersAtOnce());
    if (underWay_ < most && bytesUnderWay_ + sizeBytes <= pace_.BytesAtOnce()) break;
    WaitForOne();
  }
  return memory_.Unit(free_.back(), sizeBytes);
}

void Pipeline::BeginWrite(Client& client, File& file, std::uint64_t offsetBytes,
                          std::span<const std::byte> data) {
  Begin({&client, &file, offsetBytes, data, {}, 0, true, {}});
}

void Pipeline::BeginRead(Client& client, File& file, std::uint64_t offsetBytes, std::span<std::byte> buffer) {
  Begin({&client, &file, offsetBytes, buffer, buffer, 0, false, {}});
}

void Pipeline::Begin(Slot slot) {
  const std::size_t index = free_.back();
  slot.begun = clock_.Now();
  slots_[index] = slot;
  Continue(index);  // may throw, without having begun
  Occupy(index);
}

void Pipeline::Occupy(std::size_t index) {
  free_.pop_back();
  ++underWay_;
  bytesUnderWay_ += slots_[index].data.size();
}

void Pipeline::Release(std::size_t index) noexcept {
  free_.push_back(index);  // within the capacity that the constructor has filled once
  --underWay_;
  bytesUnderWay_ -= slots_[index].data.size();
}

void Pipeline::Continue(std::size_t index) {
  const Slot& slot = slots_[index];
  if (slot.isWrite) {
    queue_->BeginWrite(*slot.file, slot.offsetBytes + slot.done, slot.data.subspan(slot.done), index);
  } else {
    queue_->BeginRead(*slot.file, slot.offsetBytes + slot.done, slot.buffer.subspan(slot.done), index);
  }
}

Pipeline::Client& Pipeline::ClientOfOneUnderWay() {
  std::size_t index = 0;
  while (std::find(free_.begin(), free_.end(), index) != free_.end()) ++index;
  return *slots_[index].client;
}

void Pipeline::WaitForOne() {
  TransferQueue::Ended ended;
  while (!queue_->WaitFor(kLongestSilence, ended)) ClientOfOneUnderWay().StillWaiting();
  Slot& slot = slots_[ended.tag];
  const std::size_t wanted = slot.data.size() - slot.done;
  if (ended.status.Ok() && ended.bytes < wanted) {
    // Carried on from the last place that the alignment allows.
    ended.bytes -= ended.bytes % slot.file->Alignment();
    if (ended.bytes > 0) {
      slot.done += ended.bytes;
      Release(ended.tag);  // it isn't under way if the next line throws
      Continue(ended.tag);
      Occupy(ended.tag);
      return;
    }
    ended.status = Status::Refusal(slot.isWrite ? "the device takes no more data"
                                                : "the device holds less than was written");
  }
  const Clock::Time now = clock_.Now();
  if (ended.status.Ok()) {
    pace_.UnitTook(now - std::max(slot.begun, lastEnd_), slot.data.size());
    pace_.TransferTook(now - slot.begun);
  }
  lastEnd_ = now;
  const Slot finished = slot;
  Release(ended.tag);
  finished.client->TransferEnded({finished.offsetBytes, finished.data, finished.isWrite}, ended.status);
}

void Pipeline::Drain() {
  while (underWay_ > 0) WaitForOne();
}

void Pipeline::Abandon() noexcept {
  if (underWay_ > 0) queue_->GiveUp();
  while (underWay_ > 0) Release(queue_->Wait().tag);
}

}  // namespace zq::engine
