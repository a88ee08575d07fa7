#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "engine/KeyStream.h"

namespace zq::engine {
namespace {

using Seed = std::array<std::byte, KeyStream::kSeedBytes>;

Seed SeedOf(const std::array<std::uint8_t, 32>& key, const std::array<std::uint8_t, 8>& nonce) {
  Seed seed{};
  std::transform(key.begin(), key.end(), seed.begin(), [](std::uint8_t b) { return std::byte{b}; });
  std::transform(nonce.begin(), nonce.end(), seed.begin() + 32, [](std::uint8_t b) { return std::byte{b}; });
  return seed;
}

std::string Hex(const std::vector<std::byte>& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::byte b : bytes) {
    text += kDigits[std::to_integer<unsigned>(b) >> 4];
    text += kDigits[std::to_integer<unsigned>(b) & 15];
  }
  return text;
}

// One parameter: how many blocks are made side by side, as far as this processor can.
class KeyStreamOfWidth : public ::testing::TestWithParam<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(AllWidths, KeyStreamOfWidth, ::testing::Values(4, 8, 16));

// The block function: RFC 8439, appendix A.1, test vectors 1 to 4 and (with a nonce whose first four bytes
// are 0) 5.
TEST_P(KeyStreamOfWidth, GivesTheBlocksOfTheStandard) {
  const std::size_t lanes = GetParam();
  std::array<std::uint8_t, 32> key{};
  std::vector<std::byte> block(64);
  KeyStream stream;

  stream.SetSeed(SeedOf(key, {}));
  stream.ReadWith(lanes, 0, block, 20);
  EXPECT_EQ(Hex(block),
            "76b8e0ada0f13d90405d6ae55386bd28bdd219b8a08ded1aa836efcc8b770dc7"
            "da41597c5157488d7724e03fb8d84a376a43b8f41518a11cc387b669b2ee6586");
  stream.ReadWith(lanes, 1, block, 20);
  EXPECT_EQ(Hex(block),
            "9f07e7be5551387a98ba977c732d080dcb0f29a048e3656912c6533e32ee7aed"
            "29b721769ce64e43d57133b074d839d531ed1f28510afb45ace10a1f4b794d6f");

  key[31] = 1;
  stream.SetSeed(SeedOf(key, {}));
  stream.ReadWith(lanes, 1, block, 20);
  EXPECT_EQ(Hex(block),
            "3aeb5224ecf849929b9d828db1ced4dd832025e8018b8160b82284f3c949aa5a"
            "8eca00bbb4a73bdad192b5c42f73f2fd4e273644c8b36125a64addeb006c13a0");

  key = {};
  key[1] = 0xff;
  stream.SetSeed(SeedOf(key, {}));
  stream.ReadWith(lanes, 2, block, 20);
  EXPECT_EQ(Hex(block),
            "72d54dfbf12ec44b362692df94137f328fea8da73990265ec1bbbea1ae9af0ca"
            "13b25aa26cb4a648cb9b9d1be65b2c0924a66c54d545ec1b7374f4872e99f096");

  stream.SetSeed(SeedOf({}, {0, 0, 0, 0, 0, 0, 0, 2}));
  stream.ReadWith(lanes, 0, block, 20);
  EXPECT_EQ(Hex(block),
            "c2c64d378cd536374ae204b9ef933fcd1a8b2288b3dfa49672ab765b54ee27c7"
            "8a970e0e955c14f3a88e741b97c286f75f8fc299e8148362fa198a39531bed6d");
}

// The same function with as many rounds as the engine takes: the eSTREAM vectors of ChaCha8 with a key of 256
// bits, all zero but for the first byte in the second.
TEST_P(KeyStreamOfWidth, GivesTheBlocksOfChaCha8) {
  std::array<std::uint8_t, 32> key{};
  std::vector<std::byte> block(64);
  KeyStream stream;
  stream.SetSeed(SeedOf(key, {}));
  stream.ReadWith(GetParam(), 0, block);
  EXPECT_EQ(Hex(block),
            "3e00ef2f895f40d67f5bb8e81f09a5a12c840ec3ce9a7f3b181be188ef711a1e"
            "984ce172b9216f419f445367456d5619314a42a3da86b001387bfdb80e0cfe42");
  std::vector<std::byte> read(64);
  stream.Read(0, read);
  EXPECT_EQ(read, block);

  key[0] = 1;
  stream.SetSeed(SeedOf(key, {}));
  stream.Read(0, block);
  EXPECT_EQ(Hex(block),
            "cf5ee9a0494aa9613e05d5ed725b804b12f4a465ee635acc3a311de8740489ea"
            "289d04f43c7518db56eb4433e498a1238cd8464d3763ddbb9222ee3bd8fae3c8");
}

// Whole groups and what is left over, across the place where the counter's upper half begins to count.
TEST_P(KeyStreamOfWidth, GivesTheSameBytesAsTheNarrowestAtAnyLength) {
  KeyStream stream;
  stream.SetSeed(SeedOf({9, 8, 7}, {6, 5}));
  for (const std::uint64_t first : {std::uint64_t{0}, std::uint64_t{3}, std::uint64_t{0xFFFFFFF3}}) {
    for (std::size_t size : {0u, 1u, 63u, 64u, 512u, 513u, 1'023u, 1'024u, 1'025u, 4'096u, 5'000u}) {
      std::vector<std::byte> narrow(size + 8, std::byte{0xA5});
      std::vector<std::byte> wide = narrow;
      stream.ReadWith(4, first, std::span(narrow).first(size));
      stream.ReadWith(GetParam(), first, std::span(wide).first(size));
      EXPECT_EQ(narrow, wide) << first << ' ' << size;
    }
  }
}

// The memory that is filled lies as it likes.
TEST_P(KeyStreamOfWidth, FillsMemoryAtAnyAddress) {
  KeyStream stream;
  stream.SetSeed(SeedOf({1}, {2}));
  std::vector<std::byte> straight(3'000), shifted(3'001);
  stream.ReadWith(4, 7, straight);
  stream.ReadWith(GetParam(), 7, std::span(shifted).subspan(1));
  EXPECT_TRUE(std::equal(straight.begin(), straight.end(), shifted.begin() + 1));
}

TEST(KeyStream, TakesTheWidestRegistersThatThereAre) {
  const std::size_t lanes = KeyStream::WidestLanes();
  EXPECT_TRUE(lanes == 4 || lanes == 8 || lanes == 16) << lanes;
#if defined(__x86_64__)
  if (__builtin_cpu_supports("avx2")) {
    EXPECT_GE(lanes, 8u);
  }
#endif
}

TEST(KeyStream, IsTheSameHoweverItIsCutIntoReads) {
  KeyStream stream;
  stream.SetSeed(SeedOf({1, 2, 3}, {4}));
  std::vector<std::byte> whole(64 * 11 + 17);
  stream.Read(5, whole);
  std::vector<std::byte> pieces(whole.size());
  for (std::size_t block = 0; block * 64 < whole.size(); ++block) {
    const std::size_t size = std::min<std::size_t>(64, whole.size() - block * 64);
    stream.Read(5 + block, std::span(pieces).subspan(block * 64, size));
  }
  EXPECT_EQ(whole, pieces);
}

TEST(KeyStream, CountsOnBeyondThirtyTwoBits) {
  KeyStream stream;
  stream.SetSeed(SeedOf({}, {}));
  std::vector<std::byte> last(64), next(64), first(64), across(128);
  stream.Read(0xFFFFFFFFu, last);
  stream.Read(0x100000000u, next);
  stream.Read(0, first);
  stream.Read(0xFFFFFFFFu, across);
  EXPECT_NE(next, first);
  EXPECT_TRUE(std::equal(last.begin(), last.end(), across.begin()));
  EXPECT_TRUE(std::equal(next.begin(), next.end(), across.begin() + 64));
}

TEST(KeyStream, HandsOutNoBlockTwice) {
  KeyStream stream;
  stream.SetSeed(SeedOf({}, {}));
  EXPECT_EQ(stream.Take(3), 0u);
  EXPECT_EQ(stream.Take(1), 3u);
  EXPECT_EQ(stream.Take(0), 4u);
  EXPECT_EQ(stream.Take(2), 4u);
}

TEST(KeyStream, TakesADifferentKeyFromTheSystemEachTime) {
  SystemSeed system;
  std::set<std::vector<std::byte>> seen;
  for (int i = 0; i < 8; ++i) {
    KeyStream stream;
    ASSERT_TRUE(stream.Seed(system).Ok());
    std::vector<std::byte> block(64);
    stream.Read(0, block);
    seen.insert(block);
  }
  EXPECT_EQ(seen.size(), 8u);
}

}  // namespace
}  // namespace zq::engine
