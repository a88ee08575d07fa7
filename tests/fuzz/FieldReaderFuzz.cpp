// The field reader: each call takes something off any bytes and makes nothing up, and a text without
// a quote comes back whole from between two.
#include <string>

#include "fuzz/Fuzz.h"
#include "platform/FieldReader.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq;
  const std::string_view bytes = test::TextOf(data, size);

  std::size_t fields = 0;
  std::size_t fieldBytes = 0;
  std::size_t searchFrom = 0;
  for (FieldReader reader(bytes); !reader.AtEnd();) {
    const std::string field = reader.Next();
    test::Require(++fields <= size);
    test::Require((fieldBytes += field.size()) <= size);
    // Fields stand in the bytes one behind the other.
    const std::size_t place = bytes.find(field, searchFrom);
    test::Require(place != std::string_view::npos);
    searchFrom = place + field.size();
  }

  std::string text(bytes);
  std::erase(text, '"');
  const std::string lines = QuotedLine(text) + QuotedLine("next");
  FieldReader reader(lines);
  test::Require(reader.Next() == text);
  test::Require(reader.Next() == "next");
  test::Require(reader.AtEnd());
  return 0;
}
