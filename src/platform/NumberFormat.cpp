#include "platform/NumberFormat.h"

#include <cmath>
#include <limits>

#include "platform/Regional.h"
#include "platform/RunTimeError.h"

namespace zq {
namespace {

// `digits` with `separator` between groups of three, counted from the right.
std::string Group(const std::string& digits, const std::string& separator) {
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text += separator;
    text += digits[i];
  }
  return text;
}

}  // namespace

std::string FormatGrouped(std::int64_t value, Regional& regional) {
  if (value == 0) return {};
  std::string digits = std::to_string(value);
  const bool negative = digits.front() == '-';
  if (negative) digits.erase(0, 1);
  return (negative ? "-" : "") + Group(digits, regional.GroupSeparator());
}

std::string FormatTwoDecimals(double value, Regional& regional) {
  // Rounding works on the value times 100; the digits are then exact whole numbers.
  const double hundredths = std::round(std::fabs(value) * 100);
  if (!(hundredths < 9e15)) throw RunTimeError(ErrorNumber::Overflow);  // not a number, too
  const auto whole = static_cast<std::int64_t>(hundredths);
  const std::string cents = std::to_string(whole % 100);
  const bool negative = value < 0 && whole != 0;
  return (negative ? "-" : "") + std::to_string(whole / 100) + regional.DecimalSeparator() +
         (cents.size() < 2 ? "0" : "") + cents;
}

std::int16_t RoundToInt16(double value) {
  // Written out instead of std::nearbyint, which depends on the thread's rounding mode.
  double rounded = std::floor(value);
  const double fraction = value - rounded;
  if (fraction > 0.5 || (fraction == 0.5 && std::fmod(rounded, 2.0) != 0)) rounded += 1;
  using Limits = std::numeric_limits<std::int16_t>;
  if (!(rounded >= Limits::min() && rounded <= Limits::max())) throw RunTimeError(ErrorNumber::Overflow);
  return static_cast<std::int16_t>(rounded);
}

}  // namespace zq
