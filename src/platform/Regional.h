// Regional: clock, number and date formats and letter case as the user's regional settings have them.
#pragma once

#include <string>
#include <string_view>

namespace zq {

class Regional {
 public:
  virtual ~Regional() = default;

  virtual std::string UpperCase(std::string_view text) = 0;
  virtual std::string DecimalSeparator() = 0;
  virtual std::string GroupSeparator() = 0;  // of thousands

  // The present date and time as text: short date, a blank, long time.
  virtual std::string Now() = 0;
};

}  // namespace zq
