// The system's own message boxes, shown by this thread: read and answered meanwhile by another one.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "support/driver/Driver.h"

namespace zq::test {

struct BoxReply {
  std::string button;
  std::string picture;  // its file's name, "" for none
};

struct ShownBox {
  MessageBoxView box;
  HWND owner = nullptr;
  bool ownerEnabled = true;
};

// Runs `action`, which shows as many boxes as there are replies, one after the other. Fails the test when one
// doesn't come.
inline std::vector<ShownBox> AnswerBoxes(const std::vector<BoxReply>& replies,
                                         const std::function<void()>& action) {
  std::vector<ShownBox> shown;
  std::string failure;
  std::thread user([&] {
    try {
      for (const BoxReply& reply : replies) {
        Window found;
        Await("the box", [&] {
          for (const Window window : TopLevelWindows([](Window any) { return any.IsVisible(); })) {
            if (window.ProcessId() == ::GetCurrentProcessId() && MessageBoxView::IsMessageBox(window))
              found = window;
          }
          return static_cast<bool>(found);
        });
        const HWND owner = found.Owner().Handle();
        shown.push_back({.box = MessageBoxView(found),
                         .owner = owner,
                         .ownerEnabled = ::IsWindowEnabled(owner) != FALSE});
        if (!reply.picture.empty()) TakePicture(found, reply.picture);
        shown.back().box.Answer(reply.button);
      }
    } catch (const DriverError& error) {
      failure = error.what();
    }
  });
  action();
  user.join();
  EXPECT_EQ(failure, "");
  EXPECT_EQ(shown.size(), replies.size());
  return shown;
}

inline void ExpectShown(const ShownBox& shown, HWND owner, const std::string& title, const std::string& text,
                        BoxIcon icon, const std::vector<std::string>& buttons,
                        const std::string& defaultButton) {
  EXPECT_EQ(shown.box.title, title);
  EXPECT_EQ(shown.box.text, text);
  EXPECT_EQ(ToString(shown.box.icon), ToString(icon));
  EXPECT_EQ(shown.box.buttons, buttons);
  EXPECT_EQ(shown.box.defaultButton, defaultButton);
  EXPECT_EQ(shown.owner, owner);
  EXPECT_FALSE(shown.ownerEnabled);
}

}  // namespace zq::test
