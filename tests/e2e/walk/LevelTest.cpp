// The level of the settings in what a wipe has written, stopped in the middle of a file: by hand, since the
// file has to be so large that it takes minutes on a disk that has other work.
#include <algorithm>
#include <optional>

#include "e2e/Wiping.h"
#include "engine/PassPlan.h"

namespace zq::test {
namespace {

using ::testing::Contains;
using ::testing::DoubleNear;

// The byte that the whole block holds; nothing if it holds several.
std::optional<std::uint8_t> OnlyByte(std::string_view block) {
  const bool one = std::all_of(block.begin(), block.end(), [&](char byte) { return byte == block.front(); });
  return one ? std::optional(static_cast<std::uint8_t>(block.front())) : std::nullopt;
}

std::optional<std::uint8_t> ByteOf(const engine::Pass& pass) {
  return pass.random ? std::nullopt : std::optional(pass.pattern);
}

// How many passes have gone over a file: 2.25 is two, and a quarter of the third. Of a file that holds
// nothing but random data it may be several; none if its bytes are not those of any pass of the level, with
// the one before it, or the file's first content, behind. That must hold several different bytes everywhere.
std::vector<double> PassesOver(const std::string& bytes, int level) {
  constexpr std::size_t kBlock = 4096;
  const std::size_t blocks = bytes.size() / kBlock;
  const auto block = [&](std::size_t index) {
    return OnlyByte(std::string_view(bytes).substr(index * kBlock, kBlock));
  };
  const auto head = block(0);
  const auto tail = block(blocks - 1);
  // Up to here it is as at its head.
  std::size_t done = 1;
  for (std::size_t end = blocks; head != tail && done + 1 < end;) {
    const std::size_t middle = (done + end) / 2;
    (block(middle) == head ? done : end) = middle;
  }
  const double part = static_cast<double>(done) / static_cast<double>(blocks);

  std::vector<double> places;
  const std::vector<engine::Pass> passes = engine::PassesOfLevel(level);
  for (std::size_t pass = 0; pass < passes.size(); ++pass) {
    if (ByteOf(passes[pass]) != head) continue;
    const auto before = pass == 0 ? std::nullopt : ByteOf(passes[pass - 1]);
    if (head == tail) places.push_back(static_cast<double>(pass + 1));
    if (head != tail && before == tail) places.push_back(static_cast<double>(pass) + part);
  }
  return places;
}

// The first number of a status window's line: how much of the file in work is done, in bytes.
double DoneBytes(const std::string& line) {
  constexpr std::string_view kBefore = "Processed ";
  std::string digits = line.substr(kBefore.size(), line.find(" bytes of ") - kBefore.size());
  std::erase(digits, ',');
  return std::stod(digits);
}

class Level : public WipingTest, public ::testing::WithParamInterface<int> {};

TEST_P(Level, IsThatOfThePassesThatAWipeHasMade) {
  SettingsFile settings;
  settings.passes = GetParam();
  Prepare(settings);
  const std::string path = Large("large.dat");
  const Program program(exe_, Quoted(path));
  const MainWindow main(program);
  main.list.WaitRows(1);
  Confirm(program, main);
  const StatusWindow status(program);
  status.WaitWork("large.dat");
  Await("a part of the file", [&] { return ReadProgress(status.current).position > 4; });
  status.cancel.Press();
  const MessageBoxView box = program.WaitBox("Cancel");
  const std::string line = status.Line();  // the engine stands still while the question is open
  box.Answer("Yes");
  Close(program, main, kCancelled);
  // Each pass is one part of the whole, and so is the reading back at the end.
  const int parts = 3 * GetParam() + 1;
  const double share = DoneBytes(line) / static_cast<double>(kLargeBytes);
  EXPECT_THAT(PassesOver(ReadFileBytes(path), GetParam()), Contains(DoubleNear(share * parts, 0.1))) << line;
}

INSTANTIATE_TEST_SUITE_P(OfTheSettings, Level, ::testing::Values(3, 5, 7));

}  // namespace
}  // namespace zq::test
