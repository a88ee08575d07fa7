// What every fuzzer uses: LLVMFuzzerTestOneInput's declaration, and a check that no build leaves out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace zq::test {

// Ends the run, which keeps the input, if `holds` is false.
inline void Require(bool holds) {
  if (!holds) std::abort();
}

inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// The input as two texts, so that a seed can be written by hand: the first line, and all behind it.
inline std::pair<std::string_view, std::string_view> FirstLineAndRest(std::string_view text) {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos) return {text, {}};
  return {text.substr(0, end), text.substr(end + 1)};
}

}  // namespace zq::test
