// FakeRegional: regional formats that a test sets, and a clock that stands still.
#pragma once

#include <string>

#include "platform/Regional.h"

namespace zq::test {

class FakeRegional final : public Regional {
 public:
  std::string decimalSeparator = ".";
  std::string groupSeparator = ",";
  std::string now = "11/16/2026 4:30:12 AM";

  // ASCII, and the Latin-1 letters of UTF-8: enough to tell that letters beyond ASCII are folded.
  std::string UpperCase(std::string_view text) override {
    std::string upper(text);
    for (std::size_t i = 0; i < upper.size(); ++i) {
      const auto byte = static_cast<unsigned char>(upper[i]);
      if (byte >= 'a' && byte <= 'z') {
        upper[i] = static_cast<char>(byte - 32);
      } else if (byte == 0xC3 && i + 1 < upper.size()) {
        const auto next = static_cast<unsigned char>(upper[i + 1]);
        if (next >= 0xA0 && next != 0xB7 && next != 0xBF) upper[i + 1] = static_cast<char>(next - 0x20);
      }
    }
    return upper;
  }
  std::string DecimalSeparator() override { return decimalSeparator; }
  std::string GroupSeparator() override { return groupSeparator; }
  std::string Now() override { return now; }
};

}  // namespace zq::test
