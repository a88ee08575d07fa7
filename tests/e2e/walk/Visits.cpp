#include "e2e/walk/Visits.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace zq::test {
namespace {

std::string Numbered(int number, std::string_view name) {
  std::array<char, 16> digits{};
  std::snprintf(digits.data(), digits.size(), "%03d-", number);
  return digits.data() + std::string(name);
}

bool HasLabels(Window window) {
  const std::vector<Window> children = window.Children();
  return std::any_of(children.begin(), children.end(), &IsLabel);
}

const WindowRow& RowOfWindow(std::string_view id) {
  for (const WindowRow& row : WindowRows()) {
    if (row.id == id) return row;
  }
  throw DriverError("no window '" + std::string(id) + "' among WindowRows()");
}

}  // namespace

void Visits::Command(const MainWindow& main, std::string_view tool) {
  commands_.emplace(tool);
  main.window.WaitEnabled();  // a window that still has a modal one takes no command
  main.window.Command(CommandIdOf(tool));
}

void Visits::See(std::string_view id, Window window, std::string_view part, When when) {
  const WindowRow& row = RowOfWindow(id);
  SCOPED_TRACE(id);
  windows_.emplace(id);
  Keep(std::string(id) + (part.empty() ? "" : "-") + std::string(part), window, when);
  if (row.templateId != 0 && HasLabels(window)) ExpectLabelsFit(window);
}

MessageBoxView Visits::SeeBox(const Program& program, std::string_view id) {
  SCOPED_TRACE(id);
  MessageBoxView box = program.WaitBox(BoxOfId(id).title);
  SeeBox(box, id);
  return box;
}

void Visits::SeeBox(const MessageBoxView& box, std::string_view id) {
  SCOPED_TRACE(id);
  const BoxRow& row = BoxOfId(id);
  EXPECT_TRUE(IsOfPattern(box.text, row.text)) << box.text << "\nshould be\n" << row.text;
  ExpectBox(box, row.title, box.text, row.icon, row.buttons, row.buttons.front());
  boxes_.emplace(id);
  Keep(id, box.window, When::Still);
}

void Visits::AnswerBox(const Program& program, std::string_view id, std::string_view button) {
  SeeBox(program, id).Answer(button);
}

void Visits::ExpectAll(const std::string& program) const {
  for (const std::string& name : CommandNames())
    EXPECT_TRUE(commands_.contains(name)) << "no scene uses the command " << name;
  for (const WindowRow& row : WindowRows())
    EXPECT_TRUE(windows_.contains(row.id) || !row.elsewhere.empty())
        << "no scene shows the window " << row.id;
  for (const BoxRow& row : Boxes())
    EXPECT_TRUE(boxes_.contains(row.id) || !row.elsewhere.empty()) << "no scene shows the box " << row.id;
  const std::vector<int> templates = TemplatesIn(program);
  EXPECT_FALSE(templates.empty());
  for (const int number : templates) {
    const auto rows = WindowRows();
    EXPECT_TRUE(std::any_of(rows.begin(), rows.end(),
                            [number](const WindowRow& row) { return row.templateId == number; }))
        << "the dialog template " << number << " has no row";
  }
}

void Visits::Keep(std::string_view id, Window window, When when) {
  TakePicture(window, Numbered(++pictures_, id), when);
}

}  // namespace zq::test
