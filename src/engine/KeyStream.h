// The random data of the engine: a ChaCha key stream (the block function of RFC 8439), addressed by block.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "engine/SeedSource.h"

namespace zq::engine {

// One key and what comes out of it. No block is handed out twice except to compare it with what the device
// holds. The counter has 64 bits (words 12 and 13), the nonce 64 (words 14 and 15), so that a single key
// serves a file of any length; with a counter below 2^32 the blocks are those of the RFC whose nonce
// starts with four zero bytes.
class KeyStream {
 public:
  static constexpr std::size_t kBlockBytes = 64;
  static constexpr std::size_t kSeedBytes = 40;  // key, then nonce
  // ChaCha8: what is written must not be guessed or compressed, and nobody breaks more than 7 rounds even on
  // paper. With the 20 rounds of the RFC the cipher, and not the device, would be what a wipe waits for.
  static constexpr int kRounds = 8;

  KeyStream() = default;
  KeyStream(const KeyStream&) = delete;
  KeyStream& operator=(const KeyStream&) = delete;
  KeyStream(KeyStream&& other) noexcept;
  KeyStream& operator=(KeyStream&& other) noexcept;
  ~KeyStream();  // the key doesn't stay in memory

  // Takes a new key from `seeds` and starts at block 0.
  Status Seed(SeedSource& seeds);
  void SetSeed(std::span<const std::byte, kSeedBytes> seed);

  // Sets `blockCount` blocks aside for the caller, for good, and returns the first one's number.
  std::uint64_t Take(std::uint64_t blockCount);

  // Fills `out` with the stream from the start of block `firstBlock`.
  void Read(std::uint64_t firstBlock, std::span<std::byte> out) const;

  // The same bytes, with no more than `lanes` blocks (4 at least) made side by side, as on a processor with
  // narrower registers. WidestLanes is what this one has, and what Read takes: 16 (AVX-512), 8 (AVX2), 4.
  // Another number of rounds, an even one, gives another cipher of the family.
  void ReadWith(std::size_t lanes, std::uint64_t firstBlock, std::span<std::byte> out,
                int rounds = kRounds) const;
  static std::size_t WidestLanes();

 private:
  std::array<std::uint32_t, 10> seed_{};
  std::uint64_t next_ = 0;
};

// Overwrites memory in a way that the compiler can't leave out.
void Forget(std::span<std::byte> memory);

// How many key stream blocks cover `bytes`.
constexpr std::uint64_t BlockCount(std::uint64_t bytes) {
  return bytes / KeyStream::kBlockBytes + (bytes % KeyStream::kBlockBytes != 0 ? 1 : 0);
}

}  // namespace zq::engine
