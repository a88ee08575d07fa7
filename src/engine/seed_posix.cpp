#include <sys/random.h>

#include <cerrno>
#include <system_error>

#include "engine/SeedSource.h"

namespace zq::engine {

Status SystemSeed::Fill(std::span<std::byte> seed) {
  while (!seed.empty()) {
    const ssize_t got = ::getrandom(seed.data(), seed.size(), 0);
    if (got < 0) {
      if (errno == EINTR) continue;
      const int code = errno;
      return {Trouble::Other, code, std::generic_category().message(code)};
    }
    seed = seed.subspan(static_cast<std::size_t>(got));
  }
  return {};
}

}  // namespace zq::engine
