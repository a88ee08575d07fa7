#include "engine/Storage.h"

#include <algorithm>
#include <cctype>

namespace zq::engine {

bool IsMadeUp(const std::string& model) {
  std::string lower = model;
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
  constexpr const char* kMakers[] = {"virtual", "vmware", "vbox", "qemu"};
  return std::any_of(std::begin(kMakers), std::end(kMakers),
                     [&](const char* maker) { return lower.find(maker) != std::string::npos; });
}

}  // namespace zq::engine
