// FixedPoint: a 64-bit number with four decimal places. It counts files and bytes, exact for whole
// numbers up to 922337203685477; beyond that it raises Overflow.
#pragma once

#include <compare>
#include <cstdint>

namespace zq {

class FixedPoint {
 public:
  constexpr FixedPoint() = default;
  explicit FixedPoint(std::int64_t whole);  // raises Overflow

  // `high` * 2^32 + `low`, the way in which the system tells a file's length. Raises Overflow.
  static FixedPoint FromWords(std::uint32_t high, std::uint32_t low);

  FixedPoint& operator+=(const FixedPoint& other);  // raises Overflow
  FixedPoint& operator++();                         // adds one; raises Overflow

  double ToDouble() const { return static_cast<double>(scaled_) / kScale; }
  std::int64_t Whole() const { return scaled_ / kScale; }

  bool operator==(const FixedPoint&) const = default;
  auto operator<=>(const FixedPoint&) const = default;

 private:
  static constexpr std::int64_t kScale = 10000;
  std::int64_t scaled_ = 0;
};

}  // namespace zq
