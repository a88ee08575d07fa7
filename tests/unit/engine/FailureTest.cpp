#include <gtest/gtest.h>

#include "engine/EngineEvents.h"
#include "engine/Failure.h"

namespace zq::engine {
namespace {

TEST(Failure, NamesOperationPathSystemTextAndNumber) {
  const Failure failure = MakeFailure("Opening", "C:\\x.txt", {Trouble::Other, 5, "Access is denied.\r\n"});
  EXPECT_EQ(failure.text, "Opening C:\\x.txt: Access is denied (5)");
  EXPECT_EQ(failure.code, 5);
}

TEST(Failure, IsOneLineWithoutDoubleQuotes) {
  const Failure failure =
      MakeFailure("Opening", "/a \"b\"\n/c\x7F", {Trouble::Other, 7, "It\ris\n\r\n\"bad\"\t\x01now"});
  EXPECT_EQ(failure.text, "Opening /a 'b' /c : It is 'bad' now (7)");
  EXPECT_EQ(failure.reason, "Opening: It is 'bad' now (7)");
}

TEST(Failure, KeepsTextThatIsNotAscii) {
  const Failure failure =
      MakeFailure("Writing", "/täglich/日記", {Trouble::Other, 28, "Kein Platz für mehr"});
  EXPECT_EQ(failure.text, "Writing /täglich/日記: Kein Platz für mehr (28)");
}

TEST(Failure, GivesAReasonAndACodeEvenIfTheSystemGivesNone) {
  const Failure failure = MakeFailure("Reading back", "/x", {Trouble::Other, 0, ""});
  EXPECT_EQ(failure.text, "Reading back /x: the system gives no reason (1)");
  EXPECT_EQ(failure.code, kEngineErrorCode);
}

TEST(Failure, TellsARefusalWithoutANumber) {
  const Failure failure = MakeFailure("Opening", "/x", Status::Refusal("it is a link"));
  EXPECT_EQ(failure.text, "Opening /x: it is a link");
  EXPECT_EQ(failure.reason, "Opening: it is a link");
  EXPECT_EQ(failure.code, kEngineErrorCode);
}

}  // namespace
}  // namespace zq::engine
