#include "engine/Overwriter.h"

#include <algorithm>
#include <cstring>

namespace zq::engine {
namespace {

constexpr const char* kReading = "Reading back";

// What was written is made again in pieces that stay in the processor's nearest cache.
constexpr std::size_t kComparedAtOnce = std::size_t{16} << 10;

}  // namespace

Overwriter::Overwriter(Operation& operation, std::unique_ptr<File> file, std::string path)
    : operation_(operation), file_(std::move(file)), path_(std::move(path)) {
  Require(stream_.Seed(operation_.seeds), "Seeding the random data for", path_);
}

std::uint64_t Overwriter::CoveredBytes() const {
  if (!room_) return extentBytes_;
  std::uint64_t bytes = 0;
  for (const ByteRange& part : *room_) bytes += part.sizeBytes;
  return bytes;
}

template <typename Transfer>
void Overwriter::ForEachUnit(const Transfer& transfer) {
  const ByteRange all{0, extentBytes_};
  for (const ByteRange& part : room_ ? std::span<const ByteRange>(*room_) : std::span(&all, 1)) {
    const std::uint64_t end = part.offsetBytes + part.sizeBytes;
    for (std::uint64_t offset = part.offsetBytes; offset < end;) {
      const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(UnitBytes(), end - offset));
      if (!transfer(offset, size)) return;
      offset += size;
    }
  }
}

void Overwriter::TakePass(const Pass& pass) {
  pass_ = pass;
  if (randomOnly_) pass_.random = true;
  if (pass_.random) firstBlock_ = stream_.Take(BlockCount(extentBytes_));
}

// Offsets inside a pass are multiples of the key stream's block, or the data come from a pattern: units are
// whole blocks down to the last one. A pattern is shared by all writes; random data are made in `into`.
std::span<const std::byte> Overwriter::Produce(std::uint64_t offsetBytes, std::span<std::byte> into) const {
  if (!pass_.random) return operation_.Pattern(pass_.pattern, into.size());
  stream_.Read(firstBlock_ + offsetBytes / KeyStream::kBlockBytes, into);
  return into;
}

void Overwriter::BeginPass(const Pass& pass, WorkMeter& meter) {
  TakePass(pass);
  meter_ = &meter;
  ForEachUnit([&](std::uint64_t offset, std::size_t size) {
    if (unflushedBytes_ >= operation_.pace.FlushAfterBytes(HowOpened())) {
      operation_.pipeline.Drain();
      if (failure_) return false;
      Flush();
      meter.Worked(0);
    }
    const std::span<std::byte> buffer = operation_.pipeline.MakeRoom(size);
    if (failure_) return false;
    operation_.pipeline.BeginWrite(*this, *file_, offset, Produce(offset, buffer));
    return true;
  });
}

void Overwriter::BeginVerify(WorkMeter& meter) {
  meter_ = &meter;
  if (CoveredBytes() == 0) return;
  Require(file_->DropCache(), kReading, path_);
  ForEachUnit([&](std::uint64_t offset, std::size_t size) {
    const std::span<std::byte> buffer = operation_.pipeline.MakeRoom(size);
    if (failure_) return false;
    operation_.pipeline.BeginRead(*this, *file_, offset, buffer);
    return true;
  });
}

void Overwriter::TransferEnded(const Pipeline::Transfer& transfer, const Status& status) {
  if (!failure_ && !status.Ok())
    failure_ = MakeFailure(transfer.isWrite ? "Writing" : kReading, path_, status);
  if (failure_) return;
  if (transfer.isWrite) {
    unflushedBytes_ += transfer.data.size();
  } else {
    Compare(transfer);
  }
  meter_->Worked(transfer.data.size());
}

void Overwriter::Compare(const Pipeline::Transfer& transfer) {
  for (std::size_t done = 0; done < transfer.data.size();) {
    const std::size_t size = std::min(kComparedAtOnce, transfer.data.size() - done);
    const std::span<const std::byte> expected =
        Produce(transfer.offsetBytes + done, operation_.buffer.First(size));
    if (std::memcmp(expected.data(), transfer.data.data() + done, size) != 0) {
      // What others have done since the last pass can be seen, mostly.
      FileInfo info;
      const bool othersDid = file_->Info(info).Ok() && !info.notInPlace.empty();
      failure_ = MakeFailure(kReading, path_,
                             othersDid ? info.notInPlace
                             : file_->IsOpenElsewhere()
                                 ? "another program has it open, and has written to it during the wipe"
                                 : "the device doesn't hold what was written, or another program has "
                                   "written to it");
      return;
    }
    done += size;
  }
}

void Overwriter::ThrowIfFailed() {
  if (!failure_) return;
  const Failure failure = *std::move(failure_);
  failure_.reset();
  throw Failure(failure);
}

void Overwriter::WritePass(const Pass& pass, WorkMeter& meter) {
  const AbandonAtEnd guard(operation_.pipeline);
  BeginPass(pass, meter);
  operation_.pipeline.Drain();
  ThrowIfFailed();
}

void Overwriter::Verify(WorkMeter& meter) {
  const AbandonAtEnd guard(operation_.pipeline);
  BeginVerify(meter);
  operation_.pipeline.Drain();
  ThrowIfFailed();
}

void Overwriter::Flush() {
  const Clock::Time started = operation_.clock.Now();
  Require(file_->Flush(), "Flushing", path_);
  operation_.pace.FlushTook(operation_.clock.Now() - started, unflushedBytes_, HowOpened());
  unflushedBytes_ = 0;
}

// One write after the other: where the device is full is known only when a write has ended.
Status Overwriter::Grow(std::size_t sizeBytes, std::size_t& grownBytes) {
  grownBytes = 0;
  const Clock::Time started = operation_.clock.Now();
  const std::span<const std::byte> data = Produce(extentBytes_, operation_.buffer.First(sizeBytes));
  while (grownBytes < sizeBytes) {
    std::size_t part = 0;
    Status status = file_->Write(extentBytes_, data.subspan(grownBytes), part);
    if (!status.Ok()) return status;
    if (part < sizeBytes - grownBytes) part -= part % file_->Alignment();
    if (part == 0) return Status::Refusal("the device takes no more data");
    grownBytes += part;
    extentBytes_ += part;
    unflushedBytes_ += part;
  }
  operation_.pace.UnitTook(operation_.clock.Now() - started, sizeBytes);
  if (unflushedBytes_ >= operation_.pace.FlushAfterBytes(HowOpened())) Flush();
  return {};
}

}  // namespace zq::engine
