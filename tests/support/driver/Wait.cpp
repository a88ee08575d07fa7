#include "support/driver/Wait.h"

#include <thread>

namespace zq::test {

bool WaitFor(const std::function<bool()>& condition, Limit limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(Limit(5));
  }
  return true;
}

void Await(const std::string& what, const std::function<bool()>& condition, Limit limit) {
  if (!WaitFor(condition, limit)) {
    throw DriverError("waited " + std::to_string(limit.count()) + " ms in vain for " + what);
  }
}

}  // namespace zq::test
