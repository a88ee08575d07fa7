#include "controls/document/Length.h"

#include <cmath>
#include <cstddef>
#include <string>

#include "platform/RunTimeError.h"
#include "platform/Text.h"
#include "platform/Twips.h"

namespace zq {
namespace {

struct Unit {
  std::string_view name;
  double twips;
};

constexpr Unit kUnits[] = {
    {"", 1},
    {"in", kTwipsPerInch},
    {"cm", kTwipsPerInch / 2.54},
    {"mm", kTwipsPerInch / 25.4},
    {"pt", kTwipsPerPoint},
};

constexpr double kLongest = 1000.0 * kTwipsPerInch;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The unsigned decimal number at the front of `text`, which is taken off. The point is a full stop,
// whatever the regional settings say.
double TakeNumber(std::string_view& text) {
  double value = 0;
  double scale = 1;
  std::size_t digits = 0;
  bool behindPoint = false;
  while (!text.empty() && (IsDigit(text.front()) || (text.front() == '.' && !behindPoint))) {
    if (text.front() == '.') {
      behindPoint = true;
    } else {
      ++digits;
      if (behindPoint) {
        scale /= 10;
        value += scale * (text.front() - '0');
      } else {
        value = value * 10 + (text.front() - '0');
      }
    }
    text.remove_prefix(1);
  }
  if (digits == 0) throw RunTimeError(ErrorNumber::TypeMismatch);
  return value;
}

}  // namespace

Twips LengthFrom(std::string_view text, Twips whole) {
  const std::string trimmed = TrimBlanks(text);
  std::string_view rest = trimmed;
  const double number = TakeNumber(rest);
  const std::string unitName = TrimBlanks(rest);

  double twips = -1;
  if (unitName == "%") twips = number / 100 * whole;
  for (const Unit& unit : kUnits) {
    if (unitName == unit.name) twips = number * unit.twips;
  }
  if (twips < 0) throw RunTimeError(ErrorNumber::TypeMismatch);
  if (!(twips <= kLongest)) throw RunTimeError(ErrorNumber::Overflow);
  return static_cast<Twips>(std::lround(twips));
}

}  // namespace zq
