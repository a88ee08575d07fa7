// The settings records: bytes of the right length come back as they were, and all others are refused.
#include <string>

#include "core/state/Settings.h"
#include "fuzz/Fuzz.h"
#include "platform/RunTimeError.h"

namespace zq::test {
namespace {

template <typename Decode, typename Encode>
void Check(std::string_view bytes, std::size_t recordBytes, Decode decode, Encode encode) {
  try {
    const auto record = decode(bytes);
    Require(bytes.size() == recordBytes);
    Require(encode(record) == bytes);
    Require(decode(encode(record)) == record);
  } catch (const RunTimeError& error) {
    Require(bytes.size() != recordBytes);
    Require(error.Number() == ErrorNumber::InputPastEndOfFile);
  }
}

}  // namespace
}  // namespace zq::test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq;
  const std::string_view bytes = test::TextOf(data, size);
  test::Check(bytes, kSettingsBytes, DecodeSettings, EncodeSettings);
  test::Check(bytes, kPlacementBytes, DecodePlacement, EncodePlacement);
  test::Check(bytes.substr(0, kPlacementBytes), kPlacementBytes, DecodePlacement, EncodePlacement);
  return 0;
}
