// What a walk has come by: a picture of each window and box, each box read and compared, and at the end the
// question whether anything of the inventory was left out.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "e2e/Zeroquill.h"
#include "e2e/walk/Inventory.h"

namespace zq::test {

class Visits {
 public:
  // Tells the main window a command of the table, by its tool's name.
  void Command(const MainWindow& main, std::string_view tool);

  // A window of the inventory. `part` tells apart the pictures of one that is seen in several states.
  void See(std::string_view id, Window window, std::string_view part = "", When when = When::Still);

  // Waits for a box of the inventory, compares it, and leaves it open.
  MessageBoxView SeeBox(const Program& program, std::string_view id);
  // For one that is there, or that its own way of waiting has brought.
  void SeeBox(const MessageBoxView& box, std::string_view id);
  // Waits for it, compares it, and presses a button.
  void AnswerBox(const Program& program, std::string_view id, std::string_view button);

  // Fails for everything in the inventory that was not visited, and for each template in `program` that has
  // no row. What can't be visited at all has its reason there.
  void ExpectAll(const std::string& program) const;

 private:
  void Keep(std::string_view id, Window window, When when);

  std::set<std::string, std::less<>> commands_;
  std::set<std::string, std::less<>> windows_;
  std::set<std::string, std::less<>> boxes_;
  int pictures_ = 0;
};

}  // namespace zq::test
