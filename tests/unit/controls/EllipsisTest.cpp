#include <gtest/gtest.h>

#include <string>

#include "controls/Ellipsis.h"

namespace zq {
namespace {

// Room for so many characters.
Fits Room(std::size_t characters) {
  return [characters](const std::string& text) {
    std::size_t count = 0;
    for (const char c : text) count += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
    return count <= characters;
  };
}

constexpr const char* kPath = "C:\\Users\\Somebody\\Documents\\letters\\secret letter.doc";

TEST(Ellipsis, WhatFitsStaysAsItIs) {
  EXPECT_EQ(MiddleEllipsis("letter", Room(6)), "letter");
  EXPECT_EQ(PathEllipsis(kPath, Room(100)), kPath);
  EXPECT_EQ(PathEllipsis("", Room(0)), "");
}

TEST(Ellipsis, GoesIntoTheMiddleOfAText) {
  EXPECT_EQ(MiddleEllipsis("abcdefghij", Room(7)), "abc…hij");
  EXPECT_EQ(MiddleEllipsis("abcdefghij", Room(6)), "abc…ij");
  EXPECT_EQ(MiddleEllipsis("abcdefghij", Room(0)), "a…j") << "there is always something to see";
  EXPECT_EQ(MiddleEllipsis("ab", Room(0)), "ab");
}

TEST(Ellipsis, NeverCutsACharacter) {
  EXPECT_EQ(MiddleEllipsis("äöüßéèàùâê", Room(5)), "äö…âê");
  EXPECT_EQ(MiddleEllipsis("😀😁😂🤣😃", Room(3)), "😀…😃");
  EXPECT_EQ(PathEllipsis("C:\\Grüße – письмо\\ä.txt", Room(11)), "C:…мо\\ä.txt");
}

TEST(Ellipsis, LeavesThePathItsName) {
  for (std::size_t room = 20; room < 50; ++room) {
    const std::string shown = PathEllipsis(kPath, Room(room));
    EXPECT_TRUE(shown.ends_with("\\secret letter.doc")) << shown;
    EXPECT_TRUE(Room(room)(shown)) << shown;
    EXPECT_FALSE(Room(room - 1)(shown)) << shown << " leaves room";
    if (room > 22) {
      EXPECT_TRUE(shown.starts_with("C:"));
    }
  }
  EXPECT_EQ(PathEllipsis(kPath, Room(30)), "C:\\Us…etters\\secret letter.doc");
  EXPECT_EQ(PathEllipsis(kPath, Room(19)), "…\\secret letter.doc");
}

TEST(Ellipsis, CutsANameThatHasNoRoomByItself) {
  EXPECT_EQ(PathEllipsis(kPath, Room(9)), "secr….doc");
  EXPECT_EQ(PathEllipsis("a long name of a job", Room(9)), "a lo… job");
}

TEST(Ellipsis, ABackslashAtTheEndBelongsToTheName) {
  EXPECT_EQ(PathEllipsis("C:\\Users\\Somebody\\", Room(14)), "C…rs\\Somebody\\");
  EXPECT_EQ(PathEllipsis("C:\\", Room(1)), "C…\\");
}

TEST(FoldedPath, BreaksBehindBackslashesWhereALineIsFull) {
  EXPECT_EQ(FoldedPath("C:\\abc\\def\\g.txt", Room(20)), "C:\\abc\\def\\g.txt");
  EXPECT_EQ(FoldedPath("C:\\abc\\def\\g.txt", Room(8)), "C:\\abc\\\r\ndef\\\r\ng.txt");
  EXPECT_EQ(FoldedPath("C:\\a name too long\\g.txt", Room(8)), "C:\\\r\na name too long\\\r\ng.txt");
  EXPECT_EQ(FoldedPath("", Room(8)), "");
}

}  // namespace
}  // namespace zq
