// Waiting for what another process does: always for a condition, never for a time alone.
#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>

namespace zq::test {

// What a driven program should have done by now, or what a window doesn't have, as a sentence.
class DriverError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

using Limit = std::chrono::milliseconds;

// Far above what any step takes, so that a slow machine fails no test.
inline constexpr Limit kPatience{20000};

// Asks for the condition until it holds or the limit is over. Gives whether it holds.
bool WaitFor(const std::function<bool()>& condition, Limit limit = kPatience);

// The same; throws a DriverError that names `what` when the limit is over.
void Await(const std::string& what, const std::function<bool()>& condition, Limit limit = kPatience);

}  // namespace zq::test
