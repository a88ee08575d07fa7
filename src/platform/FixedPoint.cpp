#include "platform/FixedPoint.h"

#include "platform/RunTimeError.h"

namespace zq {

FixedPoint::FixedPoint(std::int64_t whole) {
  if (__builtin_mul_overflow(whole, kScale, &scaled_)) throw RunTimeError(ErrorNumber::Overflow);
}

FixedPoint FixedPoint::FromWords(std::uint32_t high, std::uint32_t low) {
  const std::uint64_t bytes = (std::uint64_t{high} << 32) | low;
  // A length with its top bit set would turn negative, and is out of range all the same.
  if (bytes > static_cast<std::uint64_t>(INT64_MAX)) throw RunTimeError(ErrorNumber::Overflow);
  return FixedPoint(static_cast<std::int64_t>(bytes));
}

FixedPoint& FixedPoint::operator+=(const FixedPoint& other) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(scaled_, other.scaled_, &sum)) throw RunTimeError(ErrorNumber::Overflow);
  scaled_ = sum;
  return *this;
}

FixedPoint& FixedPoint::operator++() {
  return *this += FixedPoint(1);
}

}  // namespace zq
