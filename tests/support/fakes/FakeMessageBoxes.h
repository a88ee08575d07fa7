// FakeMessageBoxes: keeps each box as it was shown, and answers as the test has laid down.
#pragma once

#include <deque>
#include <functional>
#include <stdexcept>
#include <vector>

#include "platform/MessageBoxes.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeMessageBoxes final : public MessageBoxes {
 public:
  explicit FakeMessageBoxes(EventLog& log) : log_(log) {}

  std::deque<MessageAnswer> answers;  // one for each box to come
  std::function<void()> whileShown;   // runs before the box is answered
  std::vector<Message> shown;

  // A box that no answer was laid down for is an error of the test or of the program.
  MessageAnswer Show(const Message& message) override {
    log_.push_back("box " + message.title);
    shown.push_back(message);
    if (whileShown) whileShown();
    if (answers.empty()) throw std::logic_error("unexpected message box: " + message.text);
    const MessageAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }

 private:
  EventLog& log_;
};

}  // namespace zq::test
