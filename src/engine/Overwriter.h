// Writes passes over one open file, stream or filler and checks the last one by reading it back.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/Operation.h"

namespace zq::engine {

class Overwriter final : private Pipeline::Client {
 public:
  // `path` is the subject of error texts. Throws Failure without a seed: each file has a key of its own.
  Overwriter(Operation& operation, std::unique_ptr<File> file, std::string path);
  // Not to be moved while transfers of it are under way.
  Overwriter(Overwriter&&) = default;
  Overwriter& operator=(Overwriter&&) = delete;

  // Takes the bytes from 0 to `extentBytes` as what has to be covered. It must be a multiple of the file's
  // alignment.
  void SetExtent(std::uint64_t extentBytes) { extentBytes_ = extentBytes; }
  // Of these bytes only those that have room on the device: see FileInfo::room, whose parts lie within the
  // extent.
  void SetRoom(std::vector<ByteRange> room) { room_ = std::move(room); }
  std::uint64_t ExtentBytes() const { return extentBytes_; }
  // How much a pass writes.
  std::uint64_t CoveredBytes() const;
  // Random data in place of the passes' patterns; see FileInfo::mergesEqual.
  void SetRandomOnly() { randomOnly_ = true; }

  // Covers the extent with one pass. What is written isn't on the device before the file is flushed, which
  // is the caller's next step: one flush can serve many files.
  void WritePass(const Pass& pass, WorkMeter& meter);
  void Flush();
  // Reads the extent back past the caches and compares it with what the last pass wrote.
  void Verify(WorkMeter& meter);

  // The same two in halves, for many files at once: these return with transfers under way. After the
  // pipeline is drained, ThrowIfFailed tells how they have ended. `meter` has to live until then.
  void BeginPass(const Pass& pass, WorkMeter& meter);
  void BeginVerify(WorkMeter& meter);
  void ThrowIfFailed();

  // What waits for a flush, and how it got there.
  std::uint64_t UnflushedBytes() const { return unflushedBytes_; }
  Access HowOpened() const { return file_->Alignment() > 1 ? Access::Direct : Access::Cached; }
  // To be called when Device::FlushMany has flushed this file among others.
  void FlushedByOthers() { unflushedBytes_ = 0; }

  // For a filler, which grows by its first pass: BeginGrowing, then Grow until it returns trouble. Grow
  // writes up to `sizeBytes` behind the extent and adds to it what was taken, which is never 0 when Ok.
  void BeginGrowing(const Pass& patternPass) { TakePass(patternPass); }
  std::size_t UnitBytes() const { return operation_.pace.UnitBytes(HowOpened()); }
  Status Grow(std::size_t sizeBytes, std::size_t& grownBytes);

  File& TheFile() { return *file_; }
  const std::string& Path() const { return path_; }
  // Takes another file, and gives it back for whatever comes after the passes.
  void Reopen(std::unique_ptr<File> file) { file_ = std::move(file); }
  std::unique_ptr<File> TakeFile() { return std::move(file_); }

 private:
  // Calls `transfer` with offset and size of one after the other, in units of the pace, until it returns
  // false.
  template <typename Transfer>
  void ForEachUnit(const Transfer& transfer);
  void TakePass(const Pass& pass);
  void Compare(const Pipeline::Transfer& transfer);
  void TransferEnded(const Pipeline::Transfer& transfer, const Status& status) override;
  void StillWaiting() override { meter_->Worked(0); }
  std::span<const std::byte> Produce(std::uint64_t offsetBytes, std::span<std::byte> into) const;

  Operation& operation_;
  std::unique_ptr<File> file_;
  std::string path_;
  std::uint64_t extentBytes_ = 0;
  std::optional<std::vector<ByteRange>> room_;
  bool randomOnly_ = false;
  std::uint64_t unflushedBytes_ = 0;
  KeyStream stream_;
  Pass pass_;                     // the pass in work, or the last one
  std::uint64_t firstBlock_ = 0;  // where its random data start
  WorkMeter* meter_ = nullptr;
  std::optional<Failure> failure_;  // the first one of the transfers under way
};

}  // namespace zq::engine
