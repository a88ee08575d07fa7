#include "engine/KeyStream.h"

#include <bit>
#include <cstring>
#include <utility>

namespace zq::engine {
namespace {

static_assert(std::endian::native == std::endian::little, "the key stream is stored as it lies in memory");

constexpr std::size_t kWords = 16;
constexpr std::uint32_t kConstants[4] = {0x61707865, 0x3320646e, 0x79622d32, 0x6b206574};

using SeedWords = std::array<std::uint32_t, 10>;

// As many blocks as a register has lanes are made side by side, one in each lane. There is one text for all
// widths: the vector types are the compiler's own, and the target of the function into which all of it is
// inlined says which registers it uses. (A vector wider than the baseline's can't be passed as a value, so
// it goes by reference.)
#define ZQ_INLINE [[gnu::always_inline]] inline

template <std::size_t kLanes>
struct Vector {
  typedef std::uint32_t Words __attribute__((vector_size(kLanes * 4)));
  typedef std::uint8_t Bytes __attribute__((vector_size(kLanes * 4)));
};

template <int kBits, std::size_t... kIndices>
ZQ_INLINE void RotateBytes(Vector<8>::Words& value, std::index_sequence<kIndices...>) {
  const auto bytes = reinterpret_cast<Vector<8>::Bytes>(value);
  value = reinterpret_cast<Vector<8>::Words>(
      __builtin_shufflevector(bytes, bytes, ((kIndices & ~3u) | ((kIndices + 4 - kBits / 8) & 3u))...));
}

// AVX-512 has an instruction for it, which the compiler finds. AVX2 hasn't, but moves whole bytes in one.
template <int kBits, std::size_t kLanes>
ZQ_INLINE void Rotate(typename Vector<kLanes>::Words& value) {
  if constexpr (kLanes == 8 && kBits % 8 == 0) {
    RotateBytes<kBits>(value, std::make_index_sequence<32>());
  } else {
    value = (value << kBits) | (value >> (32 - kBits));
  }
}

template <std::size_t kLanes, typename Words>
ZQ_INLINE void QuarterRound(Words& a, Words& b, Words& c, Words& d) {
  a += b;
  d ^= a;
  Rotate<16, kLanes>(d);
  c += d;
  b ^= c;
  Rotate<12, kLanes>(b);
  a += b;
  d ^= a;
  Rotate<8, kLanes>(d);
  c += d;
  b ^= c;
  Rotate<7, kLanes>(b);
}

template <std::size_t kLanes, typename Words>
ZQ_INLINE void DoubleRound(Words (&x)[kWords]) {
  QuarterRound<kLanes>(x[0], x[4], x[8], x[12]);
  QuarterRound<kLanes>(x[1], x[5], x[9], x[13]);
  QuarterRound<kLanes>(x[2], x[6], x[10], x[14]);
  QuarterRound<kLanes>(x[3], x[7], x[11], x[15]);
  QuarterRound<kLanes>(x[0], x[5], x[10], x[15]);
  QuarterRound<kLanes>(x[1], x[6], x[11], x[12]);
  QuarterRound<kLanes>(x[2], x[7], x[8], x[13]);
  QuarterRound<kLanes>(x[3], x[4], x[9], x[14]);
}

// Interleaves, in each 128 bits, runs of `kRun` words from the lower or the upper halves of `a` and `b`.
template <std::size_t kLanes, bool kUpper, std::size_t kRun, typename Words, std::size_t... kIndices>
ZQ_INLINE void Interleave(const Words& a, const Words& b, Words& out, std::index_sequence<kIndices...>) {
  out = __builtin_shufflevector(a, b,
                                ((kIndices & ~3u) + (kUpper ? 2 : 0) + (kIndices & 3u) / (2 * kRun) * kRun +
                                 (kIndices & (kRun - 1)) + ((kIndices / kRun) % 2) * kLanes)...);
}

// Turns four words of all blocks, one vector for each word, into 16 bytes of each block.
template <std::size_t kLanes, typename Words>
ZQ_INLINE void StoreFour(const Words* words, std::byte* out) {
  constexpr auto kAll = std::make_index_sequence<kLanes>();
  Words pairs[4];
  Interleave<kLanes, false, 1>(words[0], words[1], pairs[0], kAll);
  Interleave<kLanes, false, 1>(words[2], words[3], pairs[1], kAll);
  Interleave<kLanes, true, 1>(words[0], words[1], pairs[2], kAll);
  Interleave<kLanes, true, 1>(words[2], words[3], pairs[3], kAll);
  Words blocks[4];
  Interleave<kLanes, false, 2>(pairs[0], pairs[1], blocks[0], kAll);
  Interleave<kLanes, true, 2>(pairs[0], pairs[1], blocks[1], kAll);
  Interleave<kLanes, false, 2>(pairs[2], pairs[3], blocks[2], kAll);
  Interleave<kLanes, true, 2>(pairs[2], pairs[3], blocks[3], kAll);
  for (std::size_t lane = 0; lane < kLanes; ++lane) {
    std::memcpy(out + lane * KeyStream::kBlockBytes,
                reinterpret_cast<const std::byte*>(&blocks[lane % 4]) + lane / 4 * 16, 16);
  }
}

// Makes groups of kLanes blocks, from `firstBlock` on.
template <std::size_t kLanes>
ZQ_INLINE void MakeGroups(const SeedWords& seed, std::uint64_t firstBlock, std::byte* out,
                          std::size_t groupCount, int rounds) {
  using Words = typename Vector<kLanes>::Words;
  Words start[kWords];
  for (std::size_t i = 0; i < 4; ++i) start[i] = Words{} + kConstants[i];
  for (std::size_t i = 0; i < 8; ++i) start[4 + i] = Words{} + seed[i];
  start[14] = Words{} + seed[8];
  start[15] = Words{} + seed[9];
  for (std::size_t group = 0; group < groupCount; ++group) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const std::uint64_t counter = firstBlock + lane;
      start[12][lane] = static_cast<std::uint32_t>(counter);
      start[13][lane] = static_cast<std::uint32_t>(counter >> 32);
    }
    Words x[kWords];
    for (std::size_t i = 0; i < kWords; ++i) x[i] = start[i];
    if (rounds == KeyStream::kRounds) {  // a number that the compiler knows, so that no loop is left of it
      for (int done = 0; done < KeyStream::kRounds; done += 2) DoubleRound<kLanes>(x);
    } else {
      for (int done = 0; done < rounds; done += 2) DoubleRound<kLanes>(x);
    }
    for (std::size_t i = 0; i < kWords; ++i) x[i] += start[i];
    for (std::size_t four = 0; four < 4; ++four) StoreFour<kLanes>(x + 4 * four, out + 16 * four);
    firstBlock += kLanes;
    out += kLanes * KeyStream::kBlockBytes;
  }
}

using MakeGroupsOfWidth = void (*)(const SeedWords&, std::uint64_t, std::byte*, std::size_t, int);

void MakeGroupsOf4(const SeedWords& seed, std::uint64_t firstBlock, std::byte* out, std::size_t count,
                   int rounds) {
  MakeGroups<4>(seed, firstBlock, out, count, rounds);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] void MakeGroupsOf8(const SeedWords& seed, std::uint64_t firstBlock, std::byte* out,
                                           std::size_t count, int rounds) {
  MakeGroups<8>(seed, firstBlock, out, count, rounds);
}

[[gnu::target("avx512f")]] void MakeGroupsOf16(const SeedWords& seed, std::uint64_t firstBlock,
                                               std::byte* out, std::size_t count, int rounds) {
  MakeGroups<16>(seed, firstBlock, out, count, rounds);
}
#endif

struct Generator {
  std::size_t lanes;
  MakeGroupsOfWidth make;
};

// The widest that this processor has first.
std::span<const Generator> Generators() {
#if defined(__x86_64__)
  static constexpr Generator kAll[] = {{16, MakeGroupsOf16}, {8, MakeGroupsOf8}, {4, MakeGroupsOf4}};
  // The check knows whether the system saves the wide registers, too.
  static const std::size_t first =
      __builtin_cpu_supports("avx512f") ? 0 : (__builtin_cpu_supports("avx2") ? 1 : 2);
  return std::span(kAll).subspan(first);
#else
  static constexpr Generator kAll[] = {{4, MakeGroupsOf4}};
  return kAll;
#endif
}

}  // namespace

void Forget(std::span<std::byte> memory) {
  volatile std::byte* bytes = memory.data();
  for (std::size_t i = 0; i < memory.size(); ++i) bytes[i] = std::byte{0};
}

KeyStream::KeyStream(KeyStream&& other) noexcept {
  *this = std::move(other);
}

KeyStream& KeyStream::operator=(KeyStream&& other) noexcept {
  if (this != &other) {
    seed_ = other.seed_;
    next_ = other.next_;
    Forget(std::as_writable_bytes(std::span(other.seed_)));
  }
  return *this;
}

KeyStream::~KeyStream() {
  Forget(std::as_writable_bytes(std::span(seed_)));
}

Status KeyStream::Seed(SeedSource& seeds) {
  std::array<std::byte, kSeedBytes> seed{};
  Status status = seeds.Fill(seed);
  if (status.Ok()) SetSeed(seed);
  Forget(seed);
  return status;
}

void KeyStream::SetSeed(std::span<const std::byte, kSeedBytes> seed) {
  static_assert(sizeof seed_ == kSeedBytes);
  std::memcpy(seed_.data(), seed.data(), kSeedBytes);
  next_ = 0;
}

std::uint64_t KeyStream::Take(std::uint64_t blockCount) {
  const std::uint64_t first = next_;
  next_ += blockCount;
  return first;
}

void KeyStream::Read(std::uint64_t firstBlock, std::span<std::byte> out) const {
  ReadWith(WidestLanes(), firstBlock, out);
}

std::size_t KeyStream::WidestLanes() {
  return Generators().front().lanes;
}

void KeyStream::ReadWith(std::size_t lanes, std::uint64_t firstBlock, std::span<std::byte> out,
                         int rounds) const {
  constexpr std::size_t kMostLanes = 16;
  for (const Generator& generator : Generators()) {
    if (generator.lanes > lanes) continue;
    const std::size_t groupBytes = generator.lanes * kBlockBytes;
    const std::size_t groupCount = out.size() / groupBytes;
    generator.make(seed_, firstBlock, out.data(), groupCount, rounds);
    firstBlock += groupCount * generator.lanes;
    out = out.subspan(groupCount * groupBytes);
    if (!out.empty()) {
      std::byte last[kMostLanes * kBlockBytes];
      generator.make(seed_, firstBlock, last, 1, rounds);
      std::memcpy(out.data(), last, out.size());
    }
    return;
  }
}

}  // namespace zq::engine
