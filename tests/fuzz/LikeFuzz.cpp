// Like: the first line is the pattern, the rest the text. The answer is the reference matcher's, and it
// comes in time for any input.
#include "fuzz/Fuzz.h"
#include "platform/Like.h"
#include "support/ReferenceLike.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq;
  const auto [pattern, text] = test::FirstLineAndRest(test::TextOf(data, size));
  const bool matches = Like(text, pattern);
  constexpr std::size_t kLargestTable = 1 << 16;  // what the reference fills without slowing the run
  if (text.size() * pattern.size() <= kLargestTable) {
    test::Require(matches == test::ReferenceLike(text, pattern));
  }
  test::Require(Like(text, "*"));
  return 0;
}
