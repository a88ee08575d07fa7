// Numbers as the program shows them.
#pragma once

#include <cstdint>
#include <string>

namespace zq {

class Regional;

// "###,###,###": digits in groups of three with the system's separator, all digits kept however many
// there are; zero is nothing at all, a negative number has its sign in front.
std::string FormatGrouped(std::int64_t value, Regional& regional);

// "#0.00": at least one digit before the user's decimal separator, two behind it, no groups, halves
// rounded away from zero.
std::string FormatTwoDecimals(double value, Regional& regional);

// To the nearest whole number, a half to its even neighbour: 0.5 is 0, 1.5 and 2.5 are 2.
// Raises Overflow outside the range of 16 bits.
std::int16_t RoundToInt16(double value);

}  // namespace zq
