// How files are opened and removed on Windows, by what Windows is asked.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/WindowsContent.h"
#include "engine/WindowsOpening.h"
#include "unit/engine/FakeWindowsCalls.h"

namespace zq::engine::test {
namespace {

using namespace win32;
using std::chrono::milliseconds;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

struct OpeningRig {
  FakeWindowsCalls calls;
  Volume volume;
  OpenedFile opened;

  OpeningRig() {
    volume.fileSystem = "NTFS";
    volume.flags = 0x00800000;  // extended attributes
    volume.clusterBytes = 4096;
    volume.sectorBytes = 512;
    volume.mayBackExternally = MayBackExternally(volume);
  }
  Status Open(const std::wstring& name = L"file") {
    return OpenToOverwrite(calls, volume,
                           {L"\\\\?\\C:\\folder\\" + name, L"\\\\?\\C:\\folder", Access::Direct}, opened);
  }
  // Nothing was opened in a way that could move or change anything, and all is closed.
  void ExpectUntouched() const {
    EXPECT_THAT(calls.story, Each(Not(HasSubstr("write"))));
    EXPECT_THAT(calls.story, Each(Not(HasSubstr("read-only"))));
    EXPECT_EQ(calls.open, 0);
  }
};

TEST(WindowsOpening, LooksBeforeItOpensForWriting) {
  OpeningRig rig;
  EXPECT_TRUE(rig.Open().Ok());
  EXPECT_THAT(rig.calls.story, ElementsAre("open to look", "final path", "look", "external backing",
                                           "extended attributes", "reopen to write", "close"));
  EXPECT_EQ(rig.calls.open, 1);
  EXPECT_TRUE(rig.opened.direct);
  constexpr std::uint32_t kPastTheCaches = kWriteThrough | kNoBuffering | kOverlapped | kOpenReparsePoint;
  EXPECT_EQ(rig.calls.lastOpening.flags, kPastTheCaches);
  EXPECT_EQ(rig.calls.lastOpening.share & kShareWrite, 0u);
}

TEST(WindowsOpening, RecallsNothingToLook) {
  OpeningRig rig;
  rig.calls.opensFail = {kFileNotFound};
  EXPECT_EQ(rig.Open().code, 2);
  EXPECT_EQ(rig.calls.lastOpening.flags, kOpenReparsePoint | kOpenNoRecall);
  EXPECT_EQ(rig.calls.lastOpening.access, kReadAttributes | kSynchronize);
}

TEST(WindowsOpening, RefusesAFileCompressedByCompactExeWithoutOpeningItForWriting) {
  for (const Code answer : {kSuccess, kMoreData, kInsufficientBuffer}) {
    OpeningRig rig;
    rig.calls.externalBacking = answer;
    EXPECT_THAT(rig.Open().text, HasSubstr("compact /exe"));
    rig.ExpectUntouched();
  }
}

TEST(WindowsOpening, RefusesAFileOfWhichItCantFindOutWhetherItIsCompressed) {
  OpeningRig rig;
  rig.calls.externalBacking = kAccessDenied;
  EXPECT_THAT(rig.Open().text, HasSubstr("can't be found out (5)"));
  rig.ExpectUntouched();
}

TEST(WindowsOpening, LooksNoMoreWhereNothingCompressesFiles) {
  OpeningRig rig;
  rig.calls.externalBacking = kInvalidFunction;
  ASSERT_TRUE(rig.Open().Ok());
  rig.calls.Close(rig.opened.handle);
  rig.calls.story.clear();
  EXPECT_TRUE(rig.Open().Ok());
  EXPECT_THAT(rig.calls.story, ElementsAre("open to write", "final path", "look", "extended attributes"));
}

TEST(WindowsOpening, RefusesAFileInAFolderThatHasBecomeALink) {
  for (const wchar_t* place :
       {L"\\\\?\\C:\\elsewhere\\file", L"\\\\?\\D:\\folder\\file", L"\\\\?\\C:\\folder\\sub\\file"}) {
    OpeningRig rig;
    rig.calls.finalPath = place;
    EXPECT_THAT(rig.Open().text, HasSubstr("link to another place"));
    rig.ExpectUntouched();
  }
}

TEST(WindowsOpening, RefusesAFileThatTellsNoPlace) {
  OpeningRig rig;
  rig.calls.finalPathFails = kNotSupported;
  EXPECT_THAT(rig.Open().text, HasSubstr("doesn't tell where it lies"));
  rig.ExpectUntouched();
}

TEST(WindowsOpening, TakesAShortNameForTheFileThatItStandsFor) {
  OpeningRig rig;
  rig.calls.finalPath = L"\\\\?\\C:\\folder\\a long name.txt";
  EXPECT_TRUE(rig.Open(L"ALONGN~1.TXT").Ok());
}

TEST(WindowsOpening, RemovesANewFileThatCameToLieElsewhere) {
  OpeningRig rig;
  rig.calls.finalPath = L"\\\\?\\C:\\elsewhere\\filler";
  EXPECT_FALSE(CreateNew(rig.calls, rig.volume,
                         {L"\\\\?\\C:\\folder\\filler", L"\\\\?\\C:\\folder", Access::Direct}, rig.opened)
                   .Ok());
  EXPECT_THAT(rig.calls.story, ElementsAre("create to write", "final path", "remove", "close"));
}

TEST(WindowsOpening, LearnsHowFinalPathsAreTold) {
  OpeningRig rig;
  rig.calls.finalPath = L"\\\\?\\C:\\";
  std::wstring path;
  EXPECT_TRUE(LearnFinalPath(rig.calls, nullptr, rig.volume, path).Ok());
  EXPECT_EQ(path, L"\\\\?\\C:");
  rig.calls.finalPathFails = kNotSupported;
  EXPECT_FALSE(LearnFinalPath(rig.calls, nullptr, rig.volume, path).Ok());
  rig.volume.isTrusted = true;
  EXPECT_TRUE(LearnFinalPath(rig.calls, nullptr, rig.volume, path).Ok());
  EXPECT_EQ(path, L"");
}

TEST(WindowsOpening, RefusesACloudFileWithCauseAndWayOut) {
  OpeningRig rig;
  rig.calls.attributes = kAttributeReparsePoint;
  rig.calls.reparseTag = 0x9000701A;
  const std::string reason = rig.Open().text;
  EXPECT_THAT(reason, HasSubstr("OneDrive"));
  EXPECT_THAT(reason, HasSubstr("versions"));
  EXPECT_THAT(reason, HasSubstr("recycle bin"));
  EXPECT_THAT(reason, HasSubstr("move it to a folder that isn't synchronised"));
  rig.ExpectUntouched();
}

TEST(WindowsOpening, WipesACloudFileForWhoInsistsThroughItsFilterAndWithANote) {
  OpeningRig rig;
  rig.volume.isTrusted = true;
  rig.calls.attributes = kAttributeReparsePoint;
  rig.calls.reparseTag = 0x9000001A;
  EXPECT_TRUE(rig.Open().Ok());
  EXPECT_THAT(rig.opened.caveat, HasSubstr("versions may be left in the cloud"));
  EXPECT_EQ(rig.calls.lastOpening.flags & kOpenReparsePoint, 0u);
}

TEST(WindowsOpening, NeverFetchesACloudFileThatIsNotHere) {
  for (const std::uint32_t away : {kAttributeOffline, kAttributeRecallOnDataAccess}) {
    OpeningRig rig;
    rig.volume.isTrusted = true;
    rig.calls.attributes = kAttributeReparsePoint | away;
    rig.calls.reparseTag = 0x9000601A;
    EXPECT_THAT(rig.Open().text, HasSubstr("in the cloud, not on this drive"));
    rig.ExpectUntouched();
  }
}

TEST(WindowsOpening, RefusesWhatTheFileSystemKeepsElsewhere) {
  struct {
    std::uint32_t attributes;
    std::uint32_t tag;
    const char* reason;
  } const kCases[] = {
      {kAttributeCompressed, 0, "compressed by the file system"},
      {kAttributeEncrypted, 0, "encrypted by the file system"},
      {kAttributeIntegrity, 0, "to a new place"},
      {kAttributeOffline, 0, "kept in another place"},
      {kAttributeReparsePoint, 0x80000013, "deduplicated"},
      {kAttributeReparsePoint, 0x80000017, "compact /exe"},
      {kAttributeReparsePoint, 0xC0000004, "kept in another place"},
      {kAttributeReparsePoint, 0x8000001B, "reparse tag 0x8000001B"},
      {kAttributeReparsePoint, 0xA000000C, "it is a link"},
  };
  for (const auto& refused : kCases) {
    for (const bool trusted : {false, true}) {
      OpeningRig rig;
      rig.volume.isTrusted = trusted;
      rig.calls.attributes = refused.attributes;
      rig.calls.reparseTag = refused.tag;
      EXPECT_THAT(rig.Open().text, HasSubstr(refused.reason));
      rig.ExpectUntouched();
    }
  }
}

TEST(WindowsOpening, AsksForExtendedAttributesInsteadOfGuessing) {
  OpeningRig rig;
  rig.calls.attributes = 0x00040000;  // what a listing calls "recall on open"
  EXPECT_TRUE(rig.Open().Ok());
  OpeningRig other;
  other.calls.extendedAttributeBytes = 60;
  EXPECT_THAT(other.Open().text, HasSubstr("extended attributes"));
  // Insisting is for what isn't known, and what is in them is known to stay.
  other.volume.isTrusted = true;
  EXPECT_THAT(other.Open().text, HasSubstr("extended attributes"));
  other.ExpectUntouched();
}

TEST(WindowsOpening, TakesTheReadOnlyAttributeOff) {
  OpeningRig rig;
  rig.calls.attributes = kAttributeReadOnly;
  EXPECT_TRUE(rig.Open().Ok());
  EXPECT_THAT(rig.calls.story,
              ElementsAre("open to look", "final path", "look", "external backing", "extended attributes",
                          "reopen to set", "clear read-only", "close", "reopen to write", "close"));
  EXPECT_TRUE(rig.opened.wasReadOnly);
  EXPECT_EQ(rig.calls.attributes, kAttributeNormal);
}

TEST(WindowsOpening, PutsTheReadOnlyAttributeBackWhereTheFileCantBeOpened) {
  OpeningRig rig;
  rig.calls.attributes = kAttributeReadOnly | 0x20;
  rig.calls.opensFail = {kSuccess, kSuccess, 1224};  // a section is mapped
  EXPECT_EQ(rig.Open().code, 1224);
  EXPECT_EQ(rig.calls.attributes, kAttributeReadOnly | 0x20);
  EXPECT_EQ(rig.calls.open, 0);
}

TEST(WindowsOpening, FindsTheReadOnlyAttributeWhereItDoesntLookFirst) {
  OpeningRig rig;
  rig.volume.mayBackExternally = false;
  rig.calls.attributes = kAttributeReadOnly;
  rig.calls.opensFail = {kAccessDenied};
  EXPECT_TRUE(rig.Open().Ok());
  EXPECT_EQ(rig.calls.waited, milliseconds(0));
  EXPECT_TRUE(rig.opened.wasReadOnly);
}

TEST(WindowsOpening, WaitsForAScannerAndThenGoesOn) {
  for (const Code code : {kSharingViolation, kAccessDenied, kDeletePending}) {
    OpeningRig rig;
    rig.calls.opensFail = {kSuccess, code, code, code};
    EXPECT_TRUE(rig.Open().Ok()) << code;
    EXPECT_GT(rig.calls.waited, milliseconds(0));
    EXPECT_EQ(rig.volume.patience, milliseconds(3'000)) << "it was worth it";
  }
}

TEST(WindowsOpening, WaitsAThirdOfASecondAndTellsWhatItIs) {
  OpeningRig rig;
  rig.calls.opensFail.assign(1'000, kSharingViolation);
  EXPECT_EQ(rig.Open().code, 32);
  EXPECT_EQ(rig.calls.waited, milliseconds(300));
  EXPECT_EQ(rig.calls.open, 0);
}

TEST(WindowsOpening, DoesntWaitForEachOfManyFilesThatNobodyMayOpen) {
  OpeningRig rig;
  for (int i = 0; i < 100; ++i) {
    rig.calls.opensFail.assign(1'000, kAccessDenied);
    EXPECT_EQ(rig.Open().code, 5);
  }
  EXPECT_EQ(rig.calls.waited, milliseconds(3'000));
}

TEST(WindowsOpening, WaitsForNothingElse) {
  OpeningRig rig;
  rig.calls.opensFail = {kFileNotFound};
  EXPECT_EQ(rig.Open().code, 2);
  EXPECT_EQ(rig.calls.waited, milliseconds(0));
}

TEST(WindowsOpening, GoesThroughTheCacheWhereTheFileSystemCantDoWithout) {
  OpeningRig rig;
  rig.calls.opensFail = {kSuccess, kInvalidParameter};
  EXPECT_TRUE(rig.Open().Ok());
  EXPECT_FALSE(rig.opened.direct);
  EXPECT_EQ(rig.calls.lastOpening.flags & kNoBuffering, 0u);
}

TEST(WindowsRemoval, WaitsAboutASecondForAPendingOne) {
  FakeWindowsCalls calls;
  SystemHandle handle = &calls;
  calls.open = 1;
  calls.removesFail = {kInvalidParameter};  // FAT knows only the removal with the last handle
  calls.existsSays = {kAccessDenied, kDeletePending, kSuccess};
  EXPECT_TRUE(RemoveEntry(calls, handle, L"x", false).Ok());
  EXPECT_EQ(handle, nullptr);
  EXPECT_THAT(calls.story, ElementsAre("remove at once", "remove", "close"));
  EXPECT_GT(calls.waited, milliseconds(0));

  FakeWindowsCalls other;
  handle = &other;
  other.existsSays.assign(1'000, kDeletePending);
  EXPECT_THAT(RemoveEntry(other, handle, L"x", false).text,
              HasSubstr("for as long as another program has it open"));
  EXPECT_EQ(other.waited, milliseconds(1'000));
}

TEST(WindowsRemoval, LeavesTheFilesOtherNamesReadOnlyAsTheyWere) {
  FakeWindowsCalls calls;
  SystemHandle handle = &calls;
  calls.open = 1;
  EXPECT_TRUE(RemoveEntry(calls, handle, L"x", true).Ok());
  EXPECT_THAT(calls.story, ElementsAre("remove at once", "look", "set read-only", "close"));
}

TEST(WindowsRemoval, TellsWhyItFails) {
  FakeWindowsCalls calls;
  SystemHandle handle = &calls;
  calls.removesFail.assign(1'000, kAccessDenied);
  EXPECT_EQ(RemoveEntry(calls, handle, L"x", false).code, 5);
  EXPECT_EQ(calls.waited, milliseconds(1'000));
  EXPECT_EQ(handle, &calls) << "it is still open";
}

TEST(WindowsVolume, KnowsWhereFilesAreOverwrittenInPlace) {
  const auto volume = [](const char* name, bool isRemote, bool isTrusted) {
    Volume made;
    made.fileSystem = name;
    made.isRemote = isRemote;
    made.isTrusted = isTrusted;
    return made;
  };
  for (const char* name : {"NTFS", "FAT", "FAT32", "exFAT"}) {
    EXPECT_EQ(WhyNotOn(volume(name, false, false)), "") << name;
    EXPECT_EQ(CaveatOf(volume(name, false, true)), "") << name;
    EXPECT_EQ(WhyNotOn(volume(name, true, false)), "") << name;
    EXPECT_THAT(CaveatOf(volume(name, true, false)), HasSubstr("network drive")) << name;
  }
  for (const bool isRemote : {false, true}) {
    for (const bool isTrusted : {false, true}) EXPECT_NE(WhyNotOn(volume("ReFS", isRemote, isTrusted)), "");
  }
  for (const char* name : {"UDF", "WinBtrfs", "ntfs", "NTFS2", ""}) {
    EXPECT_THAT(WhyNotOn(volume(name, false, false)), HasSubstr(name)) << name;
    EXPECT_NE(WhyNotOn(volume(name, false, false)), "") << name;
    EXPECT_EQ(WhyNotOn(volume(name, false, true)), "") << name;
    EXPECT_THAT(CaveatOf(volume(name, false, true)), HasSubstr("It isn't known")) << name;
  }
  Volume compressed = volume("FAT", false, true);
  compressed.flags = 0x8000;
  EXPECT_THAT(WhyNotOn(compressed), HasSubstr("compressed"));
}

TEST(WindowsVolume, KnowsWhereNamesLieInRecords) {
  Volume volume;
  for (const char* name : {"FAT", "FAT32", "exFAT", "ReFS", "UDF", "ntfs", ""}) {
    volume.fileSystem = name;
    EXPECT_FALSE(volume.NamesLieInRecords()) << name;
  }
  volume.fileSystem = "NTFS";
  EXPECT_TRUE(volume.NamesLieInRecords());
  volume.isRemote = true;
  EXPECT_FALSE(volume.NamesLieInRecords()) << "a server gives that name to whatever it has";
}

TEST(WindowsVolume, EndsFilesOnFatBelowFourGibibytes) {
  Volume volume;
  for (const char* name : {"FAT", "FAT32"}) {
    volume.fileSystem = name;
    EXPECT_EQ(MostBytesOn(volume), 4'294'967'295u);
  }
  for (const char* name : {"NTFS", "exFAT", ""}) {
    volume.fileSystem = name;
    EXPECT_EQ(MostBytesOn(volume), 0u);
  }
}

}  // namespace
}  // namespace zq::engine::test
