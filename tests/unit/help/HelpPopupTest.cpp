// Popups of the help class.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ExpectRaises.h"
#include "unit/help/HelpRig.h"

namespace zq {
namespace {

using test::HelpRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr WindowHandle kForm = 88;

// A popup of explicit text with nothing else set.
HelpPopup PlainPopup(const char* text) {
  HelpPopup popup;
  popup.cbStruct = 50;  // less than the structure's size
  popup.pszText = text;
  popup.pt = {120, 340};
  popup.rcMargins = {-1, -1, -1, -1};
  popup.pszFont = "Arial, 10, ascii, ";
  return popup;
}

TEST(HelpPopup, ShowsNothingForNoType) {
  HelpRig rig;
  rig.help.HHPopupText("text");
  rig.help.HHDisplayPopup(kForm);
  EXPECT_THAT(rig.log, IsEmpty());
}

TEST(HelpPopup, ShowsAnExplicitTextAtTheMouse) {
  HelpRig rig;
  rig.help.HHPopupType(4);
  rig.help.HHPopupText("Overwrites the file");
  rig.help.HHPopupID(9);
  rig.help.HHDisplayPopup(kForm);
  EXPECT_THAT(rig.log, ElementsAre("HH_DISPLAY_TEXT_POPUP 88 null popup"));
  EXPECT_THAT(rig.viewer.popups, ElementsAre(PlainPopup("Overwrites the file")));
}

TEST(HelpPopup, ShowsNoEmptyText) {
  HelpRig rig;
  rig.help.HHPopupType(4);
  rig.help.HHDisplayPopup(kForm);
  EXPECT_THAT(rig.log, IsEmpty());
}

TEST(HelpPopup, ShowsAStringOfTheProgram) {
  HelpRig rig;
  rig.desktop.strings[31] = "A text of the program";
  rig.help.HHPopupType(2);
  rig.help.HHPopupID(31);
  rig.help.HHDisplayPopup(kForm);
  EXPECT_THAT(rig.viewer.popups, ElementsAre(PlainPopup("A text of the program")));
}

TEST(HelpPopup, LetsAMissingStringBeAFailure) {
  HelpRig rig;
  rig.help.HHPopupType(2);
  rig.help.HHPopupID(31);
  test::ExpectRaises(ErrorNumber::InvalidProcedureCall, [&] { rig.help.HHDisplayPopup(kForm); });
}

TEST(HelpPopup, ShowsATextFileOfTheHelpFile) {
  HelpRig rig;
  rig.SetHelpFile("C:\\Zeroquill\\Zeroquill.chm");
  rig.help.HHPopupType(1);
  rig.help.HHPopupFile("popups.TXT");
  rig.help.HHPopupID(12);
  rig.help.HHDisplayPopup(kForm);
  EXPECT_EQ(rig.log.back(), "HH_DISPLAY_TEXT_POPUP 88 'C:\\Zeroquill\\Zeroquill.chm::/popups.TXT' popup");
  EXPECT_EQ(rig.viewer.popups.at(0).idString, 12u);
  EXPECT_EQ(rig.viewer.popups.at(0).pszText, std::nullopt);
}

TEST(HelpPopup, ChecksTheHelpFileOfATextFile) {
  HelpRig rig;
  rig.help.HHPopupType(1);
  rig.help.HHPopupFile("popups.txt");
  rig.help.CHMFile("C:\\a.hlp");
  rig.help.HHDisplayPopup(kForm);
  rig.help.CHMFile("C:\\a.chm");
  rig.help.HHDisplayPopup(kForm);
  EXPECT_THAT(rig.log, ElementsAre("error C:\\a.hlp is not a valid HTML Help file.", "find C:\\a.chm",
                                   "error The file C:\\a.chm does not exist.\n"
                                   "Please make sure that you have installed KLMB Help files"));
}

TEST(HelpPopup, RefusesATextFileOfAnotherExtension) {
  HelpRig rig;
  rig.SetHelpFile("C:\\a.chm");
  rig.help.HHPopupType(1);
  rig.help.HHPopupFile("popups.htm");
  rig.help.HHPopupTextBold(true);
  rig.help.HHDisplayPopup(kForm);
  EXPECT_EQ(rig.log.back(),
            "error The file specified as the text popup source, 'popups.htm', is not a valid popup file.");
  EXPECT_THAT(rig.viewer.popups, IsEmpty());
}

TEST(HelpPopup, ChoosesBetweenTwoPairsOfColours) {
  HelpRig rig;
  const auto shown = [&](bool custom) {
    rig.help.HHPopupType(4);
    rig.help.HHPopupText("text");
    rig.help.HHPopupTextColor(1);
    rig.help.HHPopupBackColor(2);
    rig.help.HHPopupCustomTextColor(3);
    rig.help.HHPopupCustomBackColor(4);
    rig.help.HHPopupCustomColors(custom);
    rig.help.HHDisplayPopup(kForm);
    return std::pair{rig.viewer.popups.back().clrForeground, rig.viewer.popups.back().clrBackground};
  };
  EXPECT_EQ(shown(false), (std::pair{1, 2}));
  EXPECT_EQ(shown(true), (std::pair{3, 4}));
}

TEST(HelpPopup, PutsTheFontTogether) {
  HelpRig rig;
  const auto font = [&](bool bold, bool italic, bool underline) {
    rig.help.HHPopupType(4);
    rig.help.HHPopupText("text");
    rig.help.HHPopupTextBold(bold);
    rig.help.HHPopupTextItalic(italic);
    rig.help.HHPopupTextUnderline(underline);
    rig.help.HHDisplayPopup(kForm);
    return rig.viewer.popups.back().pszFont;
  };
  EXPECT_EQ(font(true, true, true), "Arial, 10, ascii, Bold Italic Underline");
  EXPECT_EQ(font(true, false, false), "Arial, 10, ascii, Bold ");
  EXPECT_EQ(font(false, true, false), "Arial, 10, ascii, Italic ");
  rig.help.HHPopupTextFont("Tahoma");
  rig.help.HHPopupTextSize("8");
  EXPECT_EQ(font(false, false, true), "Tahoma, 8, ascii, Underline");
}

TEST(HelpPopup, ForgetsItsLookOnceItWasShownAndNothingElse) {
  HelpRig rig;
  rig.help.HHPopupType(4);
  rig.help.HHPopupText("text");
  rig.help.HHPopupCustomColors(true);
  rig.help.HHPopupCustomTextColor(3);
  rig.help.HHPopupCustomBackColor(4);
  rig.help.HHPopupTextColor(1);
  rig.help.HHPopupBackColor(2);
  rig.help.HHPopupTextFont("Tahoma");
  rig.help.HHPopupTextSize("8");
  rig.help.HHPopupTextBold(true);
  rig.help.HHPopupTextItalic(true);
  rig.help.HHPopupTextUnderline(true);
  rig.help.HHDisplayPopup(kForm);
  rig.help.HHDisplayPopup(kForm);
  ASSERT_EQ(rig.viewer.popups.size(), 2u);
  EXPECT_EQ(rig.viewer.popups[1], PlainPopup("text"));
  EXPECT_TRUE(rig.help.HHPopupCustomColors());

  rig.help.HHPopupCustomColors(false);
  rig.help.HHDisplayPopup(kForm);
  EXPECT_EQ(rig.viewer.popups[2], PlainPopup("text"));
}

// The structure is filled and nothing comes of it.
TEST(HelpPopup, KeepsTheLookOfATypeThatNothingIsShownFor) {
  HelpRig rig;
  rig.help.HHPopupText("text");
  rig.help.HHPopupTextColor(1);
  rig.help.HHPopupBackColor(2);
  rig.help.HHPopupTextUnderline(true);
  rig.help.HHPopupType(3);
  rig.help.HHDisplayPopup(kForm);
  EXPECT_THAT(rig.log, IsEmpty());

  rig.help.HHPopupType(4);
  rig.help.HHDisplayPopup(kForm);
  EXPECT_EQ(rig.viewer.popups.at(0).clrForeground, 1);
  EXPECT_EQ(rig.viewer.popups.at(0).clrBackground, 2);
  EXPECT_EQ(rig.viewer.popups.at(0).pszFont, "Arial, 10, ascii, Underline");
}

TEST(HelpPopup, StartsWhatsThisHelpByTheSystemsOwnHandling) {
  HelpRig rig;
  rig.help.HHInvokeWhatsThisHelp(kForm);
  EXPECT_THAT(rig.log, ElementsAre("message 88 274 61824 0"));
}

}  // namespace
}  // namespace zq
