// Where the content of files on Windows lies, by what Windows answers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/WindowsContent.h"
#include "unit/engine/FakeWindowsCalls.h"

namespace zq::engine::test {
namespace {

using namespace win32;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct ContentRig {
  FakeWindowsCalls calls;
  Volume volume;
  Places places;

  ContentRig() {
    volume.fileSystem = "NTFS";
    volume.clusterBytes = 4096;
  }
  std::string Find() { return FindPlaces(calls, nullptr, volume, places); }
};

std::vector<std::array<std::uint64_t, 2>> Pairs(const std::vector<ByteRange>& ranges) {
  std::vector<std::array<std::uint64_t, 2>> pairs;
  for (const ByteRange& range : ranges) pairs.push_back({range.offsetBytes, range.sizeBytes});
  return pairs;
}

TEST(WindowsContent, KnowsAFileInItsRecordByTheEndOfFileError) {
  ContentRig rig;
  rig.calls.extentsEndWith = kEndOfFile;
  EXPECT_EQ(rig.Find(), "");
  EXPECT_EQ(rig.places.kind, Places::Kind::InRecord);
}

TEST(WindowsContent, FindsTheExtentsOfAFragmentedFileInSeveralAnswers) {
  ContentRig rig;
  rig.calls.extents = {{{2, 100}, {5, 50}}, {{9, -1}, {10, 7}}};
  EXPECT_EQ(rig.Find(), "");
  EXPECT_EQ(rig.places.kind, Places::Kind::Clusters);
  ASSERT_EQ(rig.places.pieces.size(), 3u) << "a hole lies nowhere";
  EXPECT_EQ(rig.places.pieces[1].offsetBytes, 2u * 4096);
  EXPECT_EQ(rig.places.pieces[1].placeBytes, 50u * 4096);
  EXPECT_EQ(rig.places.pieces[1].sizeBytes, 3u * 4096);
  EXPECT_EQ(rig.places.pieces[2].offsetBytes, 9u * 4096);
}

TEST(WindowsContent, SeesThatClustersWereMoved) {
  ContentRig rig;
  rig.calls.extents = {{{4, 100}}};
  ASSERT_EQ(rig.Find(), "");
  const Places before = rig.places;
  rig.calls.extents = {{{2, 100}, {4, 102}}};
  ASSERT_EQ(rig.Find(), "");
  EXPECT_TRUE(LiesWhereItLay(before, rig.places)) << "they are only told in two parts";
  rig.calls.extents = {{{2, 100}, {4, 500}}};
  ASSERT_EQ(rig.Find(), "");
  EXPECT_FALSE(LiesWhereItLay(before, rig.places));
  rig.calls.extents = {{{3, 100}}};
  ASSERT_EQ(rig.Find(), "");
  EXPECT_FALSE(LiesWhereItLay(before, rig.places)) << "one was given back";
}

TEST(WindowsContent, SeesThatAFileHasLeftItsRecord) {
  ContentRig rig;
  rig.calls.extentsEndWith = kEndOfFile;
  ASSERT_EQ(rig.Find(), "");
  const Places before = rig.places;
  rig.calls.extentsEndWith = kSuccess;
  rig.calls.extents = {{{1, 100}}};
  ASSERT_EQ(rig.Find(), "");
  EXPECT_FALSE(LiesWhereItLay(before, rig.places));
}

TEST(WindowsContent, RefusesWhatTellsNoPlaceUnlessItCantBeExpected) {
  for (const Code code : {kNotSupported, kInvalidFunction, kAccessDenied}) {
    ContentRig rig;
    rig.calls.extentsEndWith = code;
    EXPECT_THAT(rig.Find(), HasSubstr("can't be found out (" + std::to_string(code)));
    rig.volume.isRemote = true;
    EXPECT_EQ(rig.Find(), "");
    EXPECT_EQ(rig.places.kind, Places::Kind::Untold);
    rig.volume.isRemote = false;
    rig.volume.isTrusted = true;
    EXPECT_EQ(rig.Find(), "");
  }
}

TEST(WindowsContent, EndsWithAnswersThatLeadNowhere) {
  ContentRig rig;
  rig.calls.extents = {{}, {}, {}};
  EXPECT_THAT(rig.Find(), HasSubstr("can't be found out"));
  EXPECT_EQ(rig.calls.extents.size(), 2u);
}

TEST(WindowsContent, AsksThatClustersStayAndNoMoreWhereThatIsUnknown) {
  ContentRig rig;
  ProtectClusters(rig.calls, nullptr, rig.volume);
  ASSERT_EQ(rig.calls.lastMark.size(), 3 * sizeof(void*));
  EXPECT_EQ(rig.calls.lastMark[2 * sizeof(void*)], std::byte{1});
  rig.calls.markFails = kAccessDenied;
  ProtectClusters(rig.calls, nullptr, rig.volume);
  rig.calls.markFails = kInvalidFunction;
  ProtectClusters(rig.calls, nullptr, rig.volume);
  ProtectClusters(rig.calls, nullptr, rig.volume);
  EXPECT_THAT(rig.calls.story, ElementsAre("mark", "mark", "mark"));
}

TEST(WindowsContent, FindsWhatASparseFileHoldsInWholeClusters) {
  ContentRig rig;
  rig.calls.ranges = {{{{0, 4096}}, {{65'536, 1'000}}}, {{{200'000, 5'000}}}};
  std::vector<ByteRange> room;
  EXPECT_EQ(FindRoom(rig.calls, nullptr, rig.volume, 300'000, rig.places, room), "");
  EXPECT_THAT(Pairs(room),
              ElementsAre(std::array<std::uint64_t, 2>{0, 4096}, std::array<std::uint64_t, 2>{65'536, 4096},
                          std::array<std::uint64_t, 2>{196'608, 12'288}));
}

TEST(WindowsContent, CoversOfASparseFileWhatIsAllocatedBehindItsEndToo) {
  ContentRig rig;
  rig.places.pieces = {{0, 409'600, 8'192}, {98'304, 4'096'000, 16'384}};
  rig.calls.ranges = {{{{0, 8'192}}, {{98'304, 100}}}};
  std::vector<ByteRange> room;
  EXPECT_EQ(FindRoom(rig.calls, nullptr, rig.volume, 98'404, rig.places, room), "");
  EXPECT_THAT(Pairs(room), ElementsAre(std::array<std::uint64_t, 2>{0, 8'192},
                                       std::array<std::uint64_t, 2>{98'304, 16'384}));
}

TEST(WindowsContent, KnowsASparseFileThatHoldsNothing) {
  ContentRig rig;
  std::vector<ByteRange> room{{1, 2}};
  EXPECT_EQ(FindRoom(rig.calls, nullptr, rig.volume, 50'000, rig.places, room), "");
  EXPECT_THAT(room, IsEmpty());
}

TEST(WindowsContent, RefusesASparseFileThatTellsNotWhatItHolds) {
  ContentRig rig;
  rig.calls.rangesEndWith = kAccessDenied;
  std::vector<ByteRange> room;
  EXPECT_THAT(FindRoom(rig.calls, nullptr, rig.volume, 50'000, rig.places, room),
              HasSubstr("can't be found out (5)"));
}

TEST(WindowsContent, ReadsTheNamesOfStreams) {
  std::vector<std::byte> answer(512);
  std::size_t used = 0;
  const auto add = [&answer, &used](std::u16string name, bool isLast) {
    const std::size_t start = used;
    const std::size_t size = (24 + name.size() * 2 + 7) / 8 * 8;
    used += size;
    const std::uint32_t next = isLast ? 0 : static_cast<std::uint32_t>(size);
    const auto length = static_cast<std::uint32_t>(name.size() * 2);
    std::memcpy(answer.data() + start, &next, 4);
    std::memcpy(answer.data() + start + 4, &length, 4);
    std::memcpy(answer.data() + start + 24, name.data(), name.size() * 2);
  };
  add(u"::$DATA", false);
  add(u":Zone.Identifier:$DATA", false);
  add(u":日記:$DATA", true);
  EXPECT_THAT(StreamNames(answer), ElementsAre(u"Zone.Identifier:$DATA", u"日記:$DATA"));
  EXPECT_THAT(StreamNames({}), IsEmpty());
  EXPECT_THAT(StreamNames(std::span(answer).first(30)), IsEmpty()) << "a name that is cut";
}

}  // namespace
}  // namespace zq::engine::test
