// Keeps several transfers under way at once, as many as the pace allows, each in a buffer of its own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "engine/AlignedBuffer.h"
#include "engine/Clock.h"
#include "engine/Device.h"
#include "engine/Pace.h"

namespace zq::engine {

class Pipeline {
 public:
  // One whole transfer that has ended; short ones were carried on.
  struct Transfer {
    std::uint64_t offsetBytes = 0;
    std::span<const std::byte> data;
    bool isWrite = false;
  };

  class Client {
   public:
    virtual ~Client() = default;
    // Called from MakeRoom and Drain; may throw. `data` is good until it returns.
    virtual void TransferEnded(const Transfer& transfer, const Status& status) = 0;
    // Called from there several times a second while the device doesn't answer; may throw.
    virtual void StillWaiting() = 0;
  };

  Pipeline(Device& device, const Clock& clock, Pace& pace);
  Pipeline(const Pipeline&) = delete;
  Pipeline& operator=(const Pipeline&) = delete;
  ~Pipeline() { Abandon(); }

  // Waits until a transfer of `sizeBytes` (at most Pace::kLargestUnit) may be begun, and gives the buffer for
  // it, which is the caller's until that or the next MakeRoom.
  std::span<std::byte> MakeRoom(std::size_t sizeBytes);

  // To be called after MakeRoom. `data` is that buffer, or memory that doesn't change until the end.
  void BeginWrite(Client& client, File& file, std::uint64_t offsetBytes, std::span<const std::byte> data);
  // Reads into the buffer that MakeRoom gave.
  void BeginRead(Client& client, File& file, std::uint64_t offsetBytes, std::span<std::byte> buffer);

  // Waits until nothing is under way.
  void Drain();
  // The same, without telling anybody, and without waiting longer than the system has to: the rest is of no
  // use to anybody. Nothing throws: this is for the way out.
  void Abandon() noexcept;

 private:
  struct Slot {
    Client* client = nullptr;
    File* file = nullptr;
    std::uint64_t offsetBytes = 0;
    std::span<const std::byte> data;
    std::span<std::byte> buffer;  // of a read
    std::size_t done = 0;
    bool isWrite = false;
    Clock::Time begun{};
  };

  void Begin(Slot slot);
  void Continue(std::size_t index);
  void Occupy(std::size_t index);
  void Release(std::size_t index) noexcept;
  void WaitForOne();
  Client& ClientOfOneUnderWay();

  const Clock& clock_;
  Pace& pace_;
  std::unique_ptr<TransferQueue> queue_;
  std::size_t depth_;   // how many transfers there may be
  UnitBuffers memory_;  // a unit for each of them
  std::array<Slot, Pace::kMostTransfers> slots_;
  std::vector<std::size_t> free_;  // the last one is taken next: the same few buffers stay in use
  std::size_t underWay_ = 0;
  std::uint64_t bytesUnderWay_ = 0;
  Clock::Time lastEnd_{};
};

// Put where files or memory may go while transfers are under way: at the end of the block all have ended.
class AbandonAtEnd {
 public:
  explicit AbandonAtEnd(Pipeline& pipeline) : pipeline_(pipeline) {}
  AbandonAtEnd(const AbandonAtEnd&) = delete;
  AbandonAtEnd& operator=(const AbandonAtEnd&) = delete;
  ~AbandonAtEnd() { pipeline_.Abandon(); }

 private:
  Pipeline& pipeline_;
};

}  // namespace zq::engine
