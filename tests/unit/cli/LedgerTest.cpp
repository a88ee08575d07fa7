#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "cli/Ledger.h"

namespace zq::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Ending = Ledger::Ending;

class LedgerTest : public testing::Test {
 protected:
  void Add(ItemKind kind, const std::string& path) {
    items.push_back({path, kind, 1, Outcome::Pending, {}});
    ledger.Add(items.size() - 1, items.back(), path, path.substr(path.rfind('/') + 1));
  }
  void File(const std::string& path) { Add(ItemKind::File, path); }

  void Settle(Ending ending) {
    alsoWiped = ledger.Settle(ending, items, [this](const std::string& path) { return left.contains(path); });
  }

  std::vector<Item> items;
  Ledger ledger;
  std::set<std::string> left;  // paths that still exist
  std::vector<std::string> alsoWiped;
};

TEST_F(LedgerTest, CallsWipedWhatWasToldToBeAndIsGone) {
  File("d/a");
  File("d/e/a");
  Add(ItemKind::Folder, "d/e");
  Add(ItemKind::Link, "d/l");
  ledger.Wiped("a");
  ledger.Wiped("a");
  Settle(Ending::Done);
  for (const Item& item : items) EXPECT_EQ(item.outcome, Outcome::Wiped) << item.path;
  EXPECT_THAT(alsoWiped, IsEmpty());
}

TEST_F(LedgerTest, DoesNotCallWipedWhatOnlyVanished) {
  File("d/a");
  File("d/b");
  ledger.Wiped("b");
  Settle(Ending::Done);
  EXPECT_EQ(items[0].outcome, Outcome::Kept);
  EXPECT_THAT(items[0].reason, HasSubstr("something else removed it"));
  EXPECT_EQ(items[1].outcome, Outcome::Wiped);
}

TEST_F(LedgerTest, CallsNoneOfTheNamesakesWipedWhenOneOfThemVanished) {
  File("d/a");
  File("d/e/a");
  ledger.Wiped("a");
  Settle(Ending::Done);
  EXPECT_EQ(items[0].outcome, Outcome::Kept);
  EXPECT_EQ(items[1].outcome, Outcome::Kept);
}

TEST_F(LedgerTest, GivesEachFailureToItsItem) {
  File("d/a");
  File("d/a b");
  Add(ItemKind::Folder, "d");
  left = {"d/a", "d/a b", "d"};
  ledger.Failed("Opening d/a b: Permission denied (13)");
  ledger.Failed("Shortening d/a (already overwritten): Input/output error (5)");
  Settle(Ending::Failed);
  EXPECT_EQ(items[0].reason, "Shortening (already overwritten): Input/output error (5)");
  EXPECT_EQ(items[1].reason, "Opening: Permission denied (13)");
  EXPECT_EQ(items[2].reason, "something in it stays");
  EXPECT_THAT(ledger.OtherFailures(), IsEmpty());
}

TEST_F(LedgerTest, KeepsWhatFailedAfterItsNameWasChanged) {
  File("d/a");
  ledger.Failed("Removing d/a (already overwritten, now named x): Permission denied (13)");
  Settle(Ending::Failed);
  EXPECT_EQ(items[0].outcome, Outcome::Kept);
  EXPECT_EQ(items[0].reason, "Removing (already overwritten, now named x): Permission denied (13)");
}

TEST_F(LedgerTest, FindsPathsThatFailuresChange) {
  File("d/\n\nx");
  File("d/\"q\"");
  File("\na");
  left = {"d/\n\nx", "d/\"q\"", "\na"};
  ledger.Failed("Opening d/ x: no");
  ledger.Failed("Opening d/'q': no");
  ledger.Failed("Opening a: no");
  Settle(Ending::Failed);
  for (const Item& item : items) EXPECT_EQ(item.reason, "Opening: no");
}

TEST_F(LedgerTest, KeepsFailuresThatNameNoItem) {
  File("d/a");
  left = {"d/a"};
  ledger.Failed("Making a random name for a file: no");
  ledger.Failed("Nonsense");
  Settle(Ending::Failed);
  EXPECT_THAT(ledger.OtherFailures(), ElementsAre("Making a random name for a file: no", "Nonsense"));
  EXPECT_EQ(items[0].reason, "Making a random name for a file: no");
}

TEST_F(LedgerTest, TellsWhatACancelFoundInWork) {
  File("d/a");
  File("d/b");
  File("d/c");
  left = {"d/b", "d/c"};
  ledger.Progress("a", false);
  ledger.Wiped("a");
  ledger.Progress("b", false);
  Settle(Ending::Cancelled);
  EXPECT_EQ(items[0].outcome, Outcome::Wiped);
  EXPECT_EQ(items[1].reason, "cancelled while it was in work: it may be partly overwritten");
  EXPECT_EQ(items[2].reason, "cancelled before its turn");
}

TEST_F(LedgerTest, NamesWhatWasWipedWithoutBeingPlanned) {
  File("d/a");
  ledger.Wiped("a");
  ledger.Wiped("late");
  ledger.Wiped("late");
  Settle(Ending::Done);
  EXPECT_EQ(items[0].outcome, Outcome::Wiped);
  EXPECT_THAT(alsoWiped, ElementsAre("late", "late"));
}

TEST_F(LedgerTest, LeavesTheRestForAnotherTry) {
  File("d/a");
  File("d/b");
  File("d/c");
  left = {"d/a", "d/b"};
  ledger.Failed("Opening d/b: no");
  ledger.Wiped("c");
  Settle(Ending::TryAgain);
  EXPECT_EQ(items[0].outcome, Outcome::Pending);
  EXPECT_EQ(items[1].outcome, Outcome::Kept);
  EXPECT_EQ(items[2].outcome, Outcome::Wiped);
}

TEST_F(LedgerTest, KeepsWhatIsThereAlthoughTheEngineIsDone) {
  File("d/a");
  left = {"d/a"};
  ledger.Wiped("a");
  Settle(Ending::Done);
  EXPECT_EQ(items[0].outcome, Outcome::Kept);
}

TEST_F(LedgerTest, TellsTheItemsInWorkApartByName) {
  File("d/a");
  File("d/e/a");
  EXPECT_EQ(ledger.Progress("a", false), 0u);
  EXPECT_EQ(ledger.Progress("a", true), 0u);
  EXPECT_EQ(ledger.Wiped("a"), 0u);
  EXPECT_EQ(ledger.Progress("a", true), std::nullopt);
  EXPECT_EQ(ledger.Progress("a", false), 1u);
  EXPECT_EQ(ledger.Wiped("a"), 1u);
  EXPECT_EQ(ledger.Wiped("a"), std::nullopt);
  EXPECT_EQ(ledger.Progress("x", false), std::nullopt);
}

}  // namespace
}  // namespace zq::cli
