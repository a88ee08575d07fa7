#include "e2e/walk/Walk.h"

namespace zq::test {

Walk::Walk() {
  settings.lastFolder = std::string(150, ' ');
}

void Walk::Launch(const std::string& arguments) {
  main_.reset();
  program_.reset();
  program_.emplace(exe, arguments);
}

void Walk::WaitMain() {
  main_.emplace(Run());
}

void Walk::Start(const std::string& arguments) {
  Launch(arguments);
  WaitMain();
}

void Walk::Exit() {
  Command("mnuFileExit");
  WaitExit();
}

void Walk::WaitExit(unsigned exitCode) {
  EXPECT_EQ(Run().WaitExit(), exitCode);
  main_.reset();
  program_.reset();
  ExpectSettingsOnDisc();
  if (layout_.empty()) layout_ = ReadFileBytes(layoutPath);
  EXPECT_TRUE(layout_.starts_with("Zeroquill bars 1\r\n")) << layout_;
  EXPECT_EQ(ReadFileBytes(layoutPath), layout_) << "nobody has moved them";
}

Window Walk::Dialog(std::string_view id, std::string_view title, std::string_view part) {
  const Window dialog = Run().WaitWindow(title, "#32770");
  visits.See(id, dialog, part);
  return dialog;
}

const Program& Walk::Run() const {
  if (!program_) throw DriverError("the program isn't started");
  return *program_;
}

const MainWindow& Walk::Main() const {
  if (!main_) throw DriverError("the program isn't started");
  return *main_;
}

void Walk::ExpectSettingsOnDisc() const {
  EXPECT_EQ(ReadFileBytes(settingsPath), settings.Bytes());
  EXPECT_EQ(ReadFileBytes(placementPath), placement.Bytes());
}

void Walk::ExpectJob(const std::string& name, const std::vector<std::string>& fields) const {
  std::string bytes;
  for (const std::string& field : fields) bytes += Quoted(field) + "\r\n";
  EXPECT_EQ(ReadFileBytes(JobPath(name)), bytes);
}

void Walk::ExpectNoTrace(std::string_view secret) const {
  EXPECT_FALSE(FolderHolds(scratch.Path(), secret));
}

}  // namespace zq::test
