// windows.h comes before the headers that need it.
// clang-format off
#include <windows.h>
#include <bcrypt.h>
// clang-format on

#include "engine/SeedSource.h"

namespace zq::engine {

Status SystemSeed::Fill(std::span<std::byte> seed) {
  const NTSTATUS status = ::BCryptGenRandom(nullptr, reinterpret_cast<PUCHAR>(seed.data()),
                                            static_cast<ULONG>(seed.size()), BCRYPT_USE_SYSTEM_PREFERRED_RNG);
  if (status < 0) {
    return {Trouble::Other, static_cast<std::int32_t>(status), "the system's random generator fails"};
  }
  return {};
}

}  // namespace zq::engine
