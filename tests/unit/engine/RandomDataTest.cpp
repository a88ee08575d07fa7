// The random passes as they reach the device, and whether they look like chance.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "engine/KeyStream.h"
#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

// A quantity that for true chance has this mean and this deviation. Six deviations off: once in 500 million.
void ExpectLikely(double found, double mean, double deviation, const char* what) {
  EXPECT_LT(std::abs(found - mean), 6 * deviation) << what << ": " << found << ", not about " << mean;
}

void ExpectLooksLikeChance(const std::vector<std::byte>& data) {
  const auto bytes = static_cast<double>(data.size());
  std::array<double, 256> counts{};
  double ones = 0;
  double runs = 1;
  double repeats = 0;
  double product = 0;
  for (std::size_t i = 0; i < data.size(); ++i) {
    const auto byte = static_cast<unsigned>(data[i]);
    ++counts[byte];
    ones += std::popcount(byte);
    // Where a bit differs from the one before it, a new run of equal bits begins.
    const unsigned before = i == 0 ? byte >> 7 : static_cast<unsigned>(data[i - 1]) & 1;
    runs += std::popcount((byte ^ (byte >> 1 | before << 7)) & 0xFF);
    if (i == 0) continue;
    const auto last = static_cast<unsigned>(data[i - 1]);
    if (byte == last) ++repeats;
    product += (byte - 127.5) * (last - 127.5);
  }
  double chiSquare = 0;
  for (const double count : counts)
    chiSquare += (count - bytes / 256) * (count - bytes / 256) / (bytes / 256);

  ExpectLikely(ones, bytes * 4, std::sqrt(bytes * 8) / 2, "bits that are set");
  ExpectLikely(runs, bytes * 4, std::sqrt(bytes * 8) / 2, "runs of equal bits");
  ExpectLikely(chiSquare, 255, std::sqrt(2 * 255.0), "evenness of the bytes");
  ExpectLikely(repeats, bytes / 256, std::sqrt(bytes / 256), "bytes like the one before");
  constexpr double kVariance = (256.0 * 256 - 1) / 12;
  ExpectLikely(product / bytes / kVariance, 0, 1 / std::sqrt(bytes), "correlation of neighbours");
}

TEST(RandomData, LookLikeChance) {
  FakeSeeds seeds;
  for (int i = 0; i < 4; ++i) {
    KeyStream stream;
    ASSERT_TRUE(stream.Seed(seeds).Ok());
    std::vector<std::byte> data(1 << 20);
    stream.Read(static_cast<std::uint64_t>(i) << 31, data);
    ExpectLooksLikeChance(data);
  }
}

// What is on the device after the last pass, of several files taken together.
TEST(RandomData, OfThePassesLookLikeChanceTogether) {
  EngineRig rig;
  rig.device.queueDepth = 8;
  for (int i = 0; i < 16; ++i) rig.device.MakeFile("/f/" + std::to_string(i), Secret(32'768));
  std::vector<std::byte> data;
  std::set<std::string> seen;
  rig.device.onOp = [&](const Op& op) {
    if (op.kind != "set length" || !seen.insert(op.path).second) return;
    const auto node = rig.device.Find(op.path);
    ASSERT_TRUE(node);
    for (const char c : node->stored) data.push_back(static_cast<std::byte>(c));
  };
  rig.device.passesNeeded = 8;  // the last pass of level 3 is a random one, which is read back
  ASSERT_TRUE(rig.engine.WipeFolderFiles("/f", "*.*", false, 3)) << rig.engine.LastErrorText();
  ASSERT_EQ(data.size(), 16u * 32'768);
  ExpectLooksLikeChance(data);
}

// A pattern shows up in each of these tests.
TEST(RandomData, AreToldFromWhatIsNot) {
  const auto failuresOf = [](std::vector<std::byte> data) {
    ::testing::TestPartResultArray failures;
    {
      ::testing::ScopedFakeTestPartResultReporter reporter(
          ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
      ExpectLooksLikeChance(data);
    }
    return failures.size();
  };
  std::vector<std::byte> data(1 << 20, std::byte{0x55});
  EXPECT_GT(failuresOf(data), 0);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::byte>(i);
  EXPECT_GT(failuresOf(data), 0);
  KeyStream stream;
  FakeSeeds seeds;
  ASSERT_TRUE(stream.Seed(seeds).Ok());
  stream.Read(0, data);
  for (std::size_t i = 0; i < data.size(); i += 100) data[i] = std::byte{0};
  EXPECT_GT(failuresOf(data), 0) << "one byte of a hundred";
}

TEST(RandomData, HaveANewKeyForEachFileAndStream) {
  EngineRig rig;
  for (int i = 0; i < 5; ++i) rig.device.MakeFile("/f/" + std::to_string(i), Secret(4'096));
  auto stream = std::make_shared<Node>();
  stream->original = stream->written = stream->stored = Secret(4'096);
  stream->writeCounts.resize(4'096);
  rig.device.Find("/f/0")->streams["s"] = stream;
  ASSERT_TRUE(rig.engine.WipeFolderFiles("/f", "*.*", false, 3)) << rig.engine.LastErrorText();
  EXPECT_EQ(rig.seeds.calls, 5 + 1 + 1) << "files, streams, and the random names";
  std::map<std::string, std::vector<std::string>> random;
  for (const Op& op : rig.device.ops) {
    if (op.kind != "write" || op.data.find_first_not_of(op.data[0]) == std::string::npos) continue;
    random[op.path].push_back(op.data);
  }
  EXPECT_EQ(random.size(), 6u);
  std::set<std::string> all;
  std::size_t count = 0;
  for (const auto& [path, passes] : random) {
    EXPECT_EQ(passes.size(), 3u) << path;
    count += passes.size();
    all.insert(passes.begin(), passes.end());
  }
  EXPECT_EQ(all.size(), count);
}

}  // namespace
}  // namespace zq::engine::test
