// The layout file of the bars: any bytes are refused, or are exactly what is written for the layout that
// was read from them.
#include "controls/BarLayout.h"
#include "fuzz/Fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq;
  const std::string_view bytes = test::TextOf(data, size);
  for (const int bandCount : {0, 1, 3}) {
    const std::optional<BarLayout> layout = DecodeBarLayout(bytes, bandCount);
    if (!layout) continue;
    test::Require(static_cast<int>(layout->size()) == bandCount);
    test::Require(EncodeBarLayout(*layout) == bytes);
  }
  return 0;
}
