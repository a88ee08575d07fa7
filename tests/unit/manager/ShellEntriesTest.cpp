#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "manager/ShellEntries.h"
#include "support/fakes/EventLog.h"

namespace zq::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kVerb[] = "Software\\Classes\\AllFilesystemObjects\\shell\\Zeroquill.Wipe";
constexpr char kClass[] = "Software\\Classes\\CLSID\\{8F0C6B1E-5D3A-4C47-9B4E-2A7D51E0C9F3}";
constexpr char kApp[] = "Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ZQExMan.exe";

// A user's registry and "Send to" folder, in which a key is there with all keys above it.
class FakeUserShell final : public UserShell {
 public:
  EventLog log;
  std::set<std::string> keys{"Software", "Software\\Classes", "Software\\Microsoft",
                             "Software\\Microsoft\\Windows", "Software\\Microsoft\\Windows\\CurrentVersion"};
  std::set<std::string> lasting = keys;
  std::map<std::string, std::string> texts;
  std::map<std::string, std::string> sendTo;
  bool elevated = false;
  int refusesFrom = -1;  // the first write that is refused, and all behind it; counted from 0
  int writes = 0;

  bool IsElevated() override { return elevated; }
  bool MakeKey(const std::string& key) override {
    log.push_back("make " + key);
    return !Refused() && Make(key, true);
  }
  bool WriteText(const std::string& key, const std::string& valueName, const std::string& text) override {
    log.push_back("write " + key + " " + valueName + "=" + text);
    if (Refused()) return false;
    texts[key + "|" + valueName] = text;
    return Make(key, false);
  }
  bool RemoveKey(const std::string& key) override {
    const bool had = keys.contains(key);
    std::erase_if(keys, [&](const std::string& any) { return any == key || any.starts_with(key + "\\"); });
    std::erase_if(texts, [&](const auto& any) {
      return any.first.starts_with(key + "|") || any.first.starts_with(key + "\\");
    });
    if (had) log.push_back("remove " + key);
    return had;
  }
  void RemoveKeyIfEmpty(const std::string& key) override {
    for (const std::string& any : keys)
      if (any.starts_with(key + "\\")) return;
    keys.erase(key);
    lasting.erase(key);
  }
  bool AddSendTo(const std::string& name, const std::string& program) override {
    log.push_back("send to " + name);
    sendTo[name] = program;
    return true;
  }
  std::optional<std::string> SendToProgram(const std::string& name) override {
    const auto found = sendTo.find(name);
    if (found == sendTo.end()) return std::nullopt;
    return found->second;
  }
  void RemoveSendTo(const std::string& name) override {
    log.push_back("remove send to " + name);
    sendTo.erase(name);
  }
  void TellChange() override { log.emplace_back("tell"); }

 private:
  bool Refused() { return refusesFrom >= 0 && writes++ >= refusesFrom; }
  bool Make(const std::string& key, bool lasts) {
    for (std::size_t end = key.find('\\'); end != std::string::npos; end = key.find('\\', end + 1))
      MakeOne(key.substr(0, end), lasts);
    MakeOne(key, lasts);
    return true;
  }
  void MakeOne(const std::string& key, bool lasts) {
    if (keys.insert(key).second && lasts) lasting.insert(key);
  }
};

class ShellEntriesTest : public ::testing::Test {
 protected:
  const std::string program = "C:\\Tools\\ZQExMan.exe";
  FakeUserShell shell;
  const std::set<std::string> keysBefore = shell.keys;
  ShellEntries entries{shell};
};

TEST_F(ShellEntriesTest, LeadTheMenuAndSendToToTheClassOfTheCompanion) {
  entries.Write(program);
  EXPECT_EQ(shell.texts,
            (std::map<std::string, std::string>{
                {std::string(kClass) + "|", "Wipe with Zeroquill"},
                {std::string(kClass) + "\\LocalServer32|", "\"C:\\Tools\\ZQExMan.exe\""},
                {std::string(kClass) + "\\LocalServer32|ServerExecutable", "C:\\Tools\\ZQExMan.exe"},
                {std::string(kVerb) + "|", "Wipe with Zeroquill"},
                {std::string(kVerb) + "|Icon", "\"C:\\Tools\\ZQExMan.exe\""},
                {std::string(kVerb) + "|MultiSelectModel", "Player"},
                {std::string(kVerb) + "|NeverDefault", ""},
                {std::string(kVerb) + "\\DropTarget|CLSID", "{8F0C6B1E-5D3A-4C47-9B4E-2A7D51E0C9F3}"},
                {std::string(kApp) + "|", "C:\\Tools\\ZQExMan.exe"},
                {std::string(kApp) + "|DropTarget", "{8F0C6B1E-5D3A-4C47-9B4E-2A7D51E0C9F3}"},
            }));
  EXPECT_THAT(shell.sendTo, ElementsAre(std::pair("Wipe with Zeroquill", program)));
  EXPECT_EQ(shell.log.back(), "tell");
}

TEST_F(ShellEntriesTest, AreGoneWithoutATraceAtTheEnd) {
  entries.Write(program);
  shell.log.clear();
  entries.Remove();
  EXPECT_THAT(shell.texts, IsEmpty());
  EXPECT_THAT(shell.sendTo, IsEmpty());
  EXPECT_EQ(shell.keys, keysBefore);
  EXPECT_EQ(shell.log.back(), "tell");
  shell.log.clear();
  entries.Remove();
  EXPECT_THAT(shell.log, IsEmpty());
}

TEST_F(ShellEntriesTest, OfACompanionThatCrashedGoAtTheNextStart) {
  {
    ShellEntries crashed(shell);
    crashed.Write("D:\\Former\\zqexman.EXE");
  }
  shell.elevated = true;
  entries.Write(program);
  EXPECT_THAT(shell.texts, IsEmpty());
  EXPECT_THAT(shell.sendTo, IsEmpty());
  EXPECT_EQ(shell.keys, keysBefore);
  EXPECT_EQ(shell.log.back(), "tell");
}

TEST_F(ShellEntriesTest, ReplaceThoseOfACompanionThatCrashed) {
  {
    ShellEntries crashed(shell);
    crashed.Write("D:\\Former\\zqexman.EXE");
  }
  entries.Write(program);
  EXPECT_EQ(shell.texts[std::string(kClass) + "\\LocalServer32|"], "\"C:\\Tools\\ZQExMan.exe\"");
  EXPECT_THAT(shell.sendTo, ElementsAre(std::pair("Wipe with Zeroquill", program)));
}

TEST_F(ShellEntriesTest, AreNotWrittenByACompanionWithMoreRightsThanTheShell) {
  shell.elevated = true;
  entries.Write(program);
  EXPECT_THAT(shell.log, IsEmpty());
  EXPECT_EQ(shell.keys, keysBefore);
  EXPECT_THAT(shell.sendTo, IsEmpty());
}

TEST_F(ShellEntriesTest, AreWrittenAllOrNone) {
  for (int first = 0;; ++first) {
    FakeUserShell refusing;
    refusing.refusesFrom = first;
    ShellEntries any(refusing);
    any.Write(program);
    if (refusing.writes <= first) break;
    EXPECT_THAT(refusing.texts, IsEmpty()) << first;
    EXPECT_THAT(refusing.sendTo, IsEmpty()) << first;
    EXPECT_EQ(refusing.keys, keysBefore) << first;
    EXPECT_THAT(refusing.log, Not(Contains("tell"))) << first;
    ASSERT_LT(first, 100);
  }
}

// In a key that goes with the session nobody could make one that stays.
TEST_F(ShellEntriesTest, DoNotHinderOthersWhoWriteBesideThem) {
  entries.Write(program);
  EXPECT_THAT(shell.lasting, Contains("Software\\Classes\\AllFilesystemObjects\\shell"));
  EXPECT_THAT(shell.lasting, Contains("Software\\Classes\\CLSID"));
  EXPECT_THAT(shell.lasting, Contains("Software\\Microsoft\\Windows\\CurrentVersion\\App Paths"));
  for (const char* own : {kVerb, kClass, kApp}) EXPECT_FALSE(shell.lasting.contains(own)) << own;
  const std::string theirs = "Software\\Classes\\AllFilesystemObjects\\shell\\Another";
  shell.WriteText(theirs, "", "Another");
  entries.Remove();
  EXPECT_TRUE(shell.keys.contains(theirs));
  EXPECT_FALSE(shell.keys.contains("Software\\Classes\\CLSID"));
}

TEST_F(ShellEntriesTest, LeaveASendToEntryOfTheirNameThatIsAnothers) {
  shell.sendTo["Wipe with Zeroquill"] = "C:\\Tools\\another.exe";
  entries.Write(program);
  entries.Remove();
  EXPECT_THAT(shell.sendTo, ElementsAre(std::pair("Wipe with Zeroquill", "C:\\Tools\\another.exe")));
  shell.sendTo["Wipe with Zeroquill"] = "";  // it can't be read
  entries.Write(program);
  EXPECT_THAT(shell.sendTo, ElementsAre(std::pair("Wipe with Zeroquill", "")));
  EXPECT_FALSE(shell.texts.empty());
}

}  // namespace
}  // namespace zq::test
