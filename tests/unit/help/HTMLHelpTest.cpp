// The display methods of the help class: the file, the target, the owner, the call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/help/HelpRig.h"

namespace zq {
namespace {

using test::HelpRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFile = "C:\\Zeroquill\\Zeroquill.chm";
constexpr const char* kFind = "find C:\\Zeroquill\\Zeroquill.chm";
constexpr const char* kNoFormBox =
    "error The HHDisplayContents method was called without a form being specified, while HHShowOnTop was set "
    "to True.";

using DisplayMethod = void (HTMLHelp::*)(const WindowHandle*);

struct Row {
  const char* name;
  DisplayMethod method;
  std::vector<std::string> calls;  // of an object with the window type "main", and owner 0
};

const std::vector<Row>& Methods() {
  static const std::vector<Row> rows = {
      {"HHDisplayTopicURL",
       &HTMLHelp::HHDisplayTopicURL,
       {"HH_DISPLAY_TOPIC 0 C:\\Zeroquill\\Zeroquill.chm>main '/wiping.html'"}},
      {"HHDisplayTopicID",
       &HTMLHelp::HHDisplayTopicID,
       {"HH_HELP_CONTEXT 0 C:\\Zeroquill\\Zeroquill.chm>main 10"}},
      {"HHDisplaySearch",
       &HTMLHelp::HHDisplaySearch,
       {"HH_DISPLAY_SEARCH 0 C:\\Zeroquill\\Zeroquill.chm>main query"}},
      {"HHDisplayKeyword",
       &HTMLHelp::HHDisplayKeyword,
       {"HH_DISPLAY_TOPIC 0 C:\\Zeroquill\\Zeroquill.chm null",
        "HH_KEYWORD_LOOKUP 0 C:\\Zeroquill\\Zeroquill.chm link"}},
      {"HHDisplayIndex",
       &HTMLHelp::HHDisplayIndex,
       {"HH_DISPLAY_INDEX 0 C:\\Zeroquill\\Zeroquill.chm>main 0"}},
      {"HHDisplayContents",
       &HTMLHelp::HHDisplayContents,
       {"HH_DISPLAY_TOC 0 C:\\Zeroquill\\Zeroquill.chm>main 0"}},
      {"HHDisplayALink", &HTMLHelp::HHDisplayALink, {"HH_ALINK_LOOKUP 0 C:\\Zeroquill\\Zeroquill.chm link"}},
  };
  return rows;
}

struct DisplayRig : HelpRig {
  DisplayRig() {
    SetHelpFile(kFile);
    help.HHWindow("main");
    help.HHTopicID(10);
    help.HHTopicURL("/wiping.html");
  }
};

TEST(HTMLHelp, MakesEachMethodsOwnCallOfTheViewer) {
  for (const Row& row : Methods()) {
    DisplayRig rig;
    (rig.help.*row.method)(nullptr);
    std::vector<std::string> expected{kFind};
    expected.insert(expected.end(), row.calls.begin(), row.calls.end());
    EXPECT_EQ(rig.log, expected) << row.name;
  }
}

TEST(HTMLHelp, RefusesAFileOfAnotherExtension) {
  for (const Row& row : Methods()) {
    for (const char* name : {"C:\\Help\\Zeroquill.chm.bak", "C:\\Help\\Zeroquill.hlp", "hm", ""}) {
      DisplayRig rig;
      rig.help.CHMFile(name);
      (rig.help.*row.method)(nullptr);
      EXPECT_THAT(rig.log, ElementsAre("error " + std::string(name) + " is not a valid HTML Help file."))
          << row.name;
    }
  }
}

TEST(HTMLHelp, TakesTheExtensionInAnyCase) {
  for (const Row& row : Methods()) {
    DisplayRig rig;
    rig.SetHelpFile("C:\\HELP.CHM");
    (rig.help.*row.method)(nullptr);
    EXPECT_EQ(rig.log.size(), 1 + row.calls.size()) << row.name;
  }
}

// The product's name is another one than ours.
TEST(HTMLHelp, SaysOfAMissingFileThatItIsMissing) {
  for (const Row& row : Methods()) {
    DisplayRig rig;
    rig.files.found.clear();
    (rig.help.*row.method)(nullptr);
    EXPECT_THAT(rig.log, ElementsAre(kFind,
                                     "error The file C:\\Zeroquill\\Zeroquill.chm does not exist.\n"
                                     "Please make sure that you have installed KLMB Help files"))
        << row.name;
  }
}

TEST(HTMLHelp, TakesAWindowOfBlanksForNone) {
  DisplayRig rig;
  rig.help.HHWindow("   ");
  rig.help.HHDisplayTopicID();
  rig.help.HHDisplayALink();
  EXPECT_THAT(rig.log, ElementsAre(kFind, "HH_HELP_CONTEXT 0 C:\\Zeroquill\\Zeroquill.chm 10", kFind,
                                   "HH_ALINK_LOOKUP 0 C:\\Zeroquill\\Zeroquill.chm link"));
  EXPECT_EQ(rig.viewer.links.at(0).pszWindow, std::nullopt);
}

TEST(HTMLHelp, LeavesTheBlanksAroundAWindowTypeWhereTheyAre) {
  DisplayRig rig;
  rig.help.HHWindow(" main ");
  rig.help.HHDisplayContents();
  rig.help.HHDisplayKeyword();
  EXPECT_EQ(rig.log.at(1), "HH_DISPLAY_TOC 0 C:\\Zeroquill\\Zeroquill.chm> main  0");
  EXPECT_EQ(rig.viewer.links.at(0).pszWindow, " main ");
}

TEST(HTMLHelp, IsOwnedByTheCallingFormOnTopOnly) {
  const WindowHandle form = 4711;
  for (const Row& row : Methods()) {
    DisplayRig rig;
    (rig.help.*row.method)(&form);
    EXPECT_EQ(rig.log.at(1), row.calls.at(0)) << row.name;

    rig.help.HHShowOnTop(true);
    (rig.help.*row.method)(&form);
    std::string owned = row.calls.back();
    owned.replace(owned.find(" 0 "), 3, " 4711 ");
    EXPECT_EQ(rig.log.back(), owned) << row.name;
  }
}

// Each of the methods names the same one in its box.
TEST(HTMLHelp, NamesDisplayContentsInTheBoxOfAMissingForm) {
  for (const Row& row : Methods()) {
    DisplayRig rig;
    rig.help.HHShowOnTop(true);
    (rig.help.*row.method)(nullptr);
    EXPECT_THAT(rig.log, ElementsAre(kFind, kNoFormBox)) << row.name;
  }
}

TEST(HTMLHelp, GoesOnAfterAnyOtherFailure) {
  for (const Row& row : Methods()) {
    DisplayRig rig;
    rig.viewer.raises = ErrorNumber::FileNotFound;
    (rig.help.*row.method)(nullptr);
    std::vector<std::string> expected{kFind};  // of two calls the second comes too
    expected.insert(expected.end(), row.calls.begin(), row.calls.end());
    EXPECT_EQ(rig.log, expected) << row.name;
  }
}

TEST(HTMLHelp, OpensTheSearchWithAnEmptyQuery) {
  DisplayRig rig;
  rig.help.HHDisplaySearch();
  HelpSearchQuery query;
  query.cbStruct = 32;
  query.fUniCodeStrings = false;
  query.pszSearchQuery = "";
  query.iProximity = 0;
  query.fStemmedSearch = false;
  query.fTitleOnly = false;
  query.fExecute = true;
  query.pszWindow = "";
  EXPECT_THAT(rig.viewer.queries, ElementsAre(query));
}

TEST(HTMLHelp, LooksUpKeywordsAndALinksWithWhatIsSet) {
  DisplayRig rig;
  rig.help.HHKeyword("wipe; level");
  rig.help.HHALink("links");
  rig.help.HHDefaultURL("/none.html");
  rig.help.HHMsgText("Nothing there");
  rig.help.HHMsgTitle("Help");
  rig.help.HHDisplayKeyword();
  rig.help.HHDisplayALink();
  HelpLink link;
  link.cbStruct = 28;
  link.fReserved = false;
  link.pszKeywords = "wipe; level";
  link.pszUrl = "/none.html";
  link.pszMsgText = "Nothing there";
  link.pszMsgTitle = "Help";
  link.pszWindow = "main";
  link.fIndexOnFail = false;
  HelpLink aLink = link;
  aLink.pszKeywords = "links";
  EXPECT_THAT(rig.viewer.links, ElementsAre(link, aLink));
}

TEST(HTMLHelp, GivesNullsForTheTextsOfALookupThatAreNotSet) {
  DisplayRig rig;
  rig.help.HHWindow("");
  rig.help.HHDisplayKeyword();
  const HelpLink& link = rig.viewer.links.at(0);
  EXPECT_EQ(link.pszKeywords, "");
  EXPECT_EQ(link.pszUrl, std::nullopt);
  EXPECT_EQ(link.pszMsgText, std::nullopt);
  EXPECT_EQ(link.pszMsgTitle, std::nullopt);
  EXPECT_EQ(link.pszWindow, std::nullopt);
}

TEST(HTMLHelp, LooksForTheFileOnceAndLeavesTheRegistryAlone) {
  DisplayRig rig;
  rig.help.HHDisplayTopicID();
  EXPECT_THAT(rig.log, ElementsAre(kFind, "HH_HELP_CONTEXT 0 C:\\Zeroquill\\Zeroquill.chm>main 10"));
  EXPECT_EQ(rig.files.open, 0);
}

TEST(HTMLHelp, ClosesItsHelpFileAndIgnoresAFailure) {
  DisplayRig rig;
  rig.viewer.raises = ErrorNumber::ObjectVariableNotSet;
  rig.help.HHClose();
  EXPECT_THAT(rig.log, ElementsAre("HH_CLOSE_ALL 0 C:\\Zeroquill\\Zeroquill.chm 0"));
}

TEST(HTMLHelp, NamesTheHelpFilesByNumberAndStoresNone) {
  HelpRig rig;
  EXPECT_EQ(rig.help.HHSetHelpFile(1), "C:\\Zeroquill\\Library.chm");
  EXPECT_EQ(rig.help.HHSetHelpFile(2), "Library.txt");
  for (const int other : {0, 3, -1})
    EXPECT_EQ(rig.help.HHSetHelpFile(static_cast<std::int16_t>(other)), "") << other;
  EXPECT_EQ(rig.help.CHMFile(), "");
}

TEST(HTMLHelp, FindsABareNameBesideTheProgram) {
  HelpRig rig;
  rig.files.found["C:\\Zeroquill\\Other.chm"] = "Other.chm";
  rig.help.CHMFile("Other.chm");
  rig.help.HHDisplayContents();
  EXPECT_THAT(rig.log, ElementsAre(test::kOpensTable, "find C:\\Zeroquill\\Other.chm",
                                   "HH_DISPLAY_TOC 0 C:\\Zeroquill\\Other.chm 0"));
  EXPECT_EQ(rig.help.CHMFile(), "C:\\Zeroquill\\Other.chm");  // the property has the fuller path now
}

TEST(HTMLHelp, NamesTheProgramsFolderForABareNameThatIsNowhere) {
  HelpRig rig;
  std::string file = "Gone.chm";
  EXPECT_FALSE(rig.help.EnsureFileExists(file));
  EXPECT_EQ(rig.log.back(),
            "error The file C:\\Zeroquill\\Gone.chm does not exist.\n"
            "Please make sure that you have installed KLMB Help files");
  EXPECT_EQ(file, "C:\\Zeroquill\\Gone.chm");
}

TEST(HTMLHelp, LooksForAFullPathWithoutTheRegistry) {
  HelpRig rig;
  rig.EnterInTable("Other.chm", "C:\\Elsewhere\\");
  rig.files.found["D:\\Other.chm"] = "Other.chm";
  std::string file = "D:\\Other.chm";
  EXPECT_TRUE(rig.help.EnsureFileExists(file));
  EXPECT_THAT(rig.log, ElementsAre("find D:\\Other.chm"));
  EXPECT_EQ(file, "D:\\Other.chm");
}

TEST(HTMLHelp, TakesABareNamesFolderFromTheTable) {
  HelpRig rig;
  rig.EnterInTable("Other.chm", "C:\\Elsewhere\\");
  rig.files.longPaths["C:\\Elsewhere\\"] = "C:\\Elsewhere\\";
  rig.files.found["C:\\Elsewhere\\\\Other.chm"] = "Other.chm";
  rig.files.found["C:\\Elsewhere\\Other.chm"] = "Other.chm";
  std::string file = "Other.chm";
  EXPECT_TRUE(rig.help.EnsureFileExists(file));
  EXPECT_EQ(file, "C:\\Elsewhere\\Other.chm");
}

// No backslash comes between folder and name.
TEST(HTMLHelp, JoinsAFolderOfTheTableWithoutABackslashOfItsOwn) {
  HelpRig rig;
  rig.EnterInTable("Other.chm", "C:\\Elsewhere");
  rig.files.longPaths["C:\\Elsewhere"] = "C:\\Elsewhere";
  rig.files.found["C:\\Elsewhere\\Other.chm"] = "Other.chm";
  std::string file = "Other.chm";
  EXPECT_FALSE(rig.help.EnsureFileExists(file));
  EXPECT_EQ(file, "C:\\ElsewhereOther.chm");
}

TEST(HTMLHelp, HoldsWhatIsSetAndStartsEmpty) {
  HelpRig rig;
  HTMLHelp& help = rig.help;
  const auto keepsText = [&](const std::string& (HTMLHelp::*read)() const,
                             void (HTMLHelp::*write)(const std::string&)) {
    EXPECT_EQ((help.*read)(), "");
    (help.*write)("  any text at all ");
    EXPECT_EQ((help.*read)(), "  any text at all ");
    (help.*write)("");
    EXPECT_EQ((help.*read)(), "");
  };
  keepsText(&HTMLHelp::HHWindow, &HTMLHelp::HHWindow);
  keepsText(&HTMLHelp::HHTopicURL, &HTMLHelp::HHTopicURL);
  keepsText(&HTMLHelp::HHMsgTitle, &HTMLHelp::HHMsgTitle);
  keepsText(&HTMLHelp::HHMsgText, &HTMLHelp::HHMsgText);
  keepsText(&HTMLHelp::HHKeyword, &HTMLHelp::HHKeyword);
  keepsText(&HTMLHelp::HHDefaultURL, &HTMLHelp::HHDefaultURL);
  keepsText(&HTMLHelp::HHALink, &HTMLHelp::HHALink);
  keepsText(&HTMLHelp::CHMFile, &HTMLHelp::CHMFile);
  EXPECT_EQ(help.HHTopicID(), 0);
  help.HHTopicID(-7);
  EXPECT_EQ(help.HHTopicID(), -7);
  EXPECT_FALSE(help.HHShowOnTop());
  help.HHShowOnTop(true);
  EXPECT_TRUE(help.HHShowOnTop());
  EXPECT_FALSE(help.HHPopupCustomColors());
  help.HHPopupCustomColors(true);
  EXPECT_TRUE(help.HHPopupCustomColors());
  EXPECT_EQ(help.HHRegFileName(), "");
  EXPECT_EQ(help.HHRegFilePath(), "");
  EXPECT_FALSE(help.HHRegFileExists());
  EXPECT_THAT(rig.log, IsEmpty());
}

}  // namespace
}  // namespace zq
