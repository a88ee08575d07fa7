// FieldReader: reads the fields of our text files, one after the other.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zq {

// A field in double quotes ends at the closing quote; one without ends at a comma or at the line's end.
// Blanks before a field and behind it, and one comma or line break (CR LF, CR or LF) behind these, are
// passed over. A quote that isn't closed runs to the end. Text that stands between a closing quote and
// the next comma is a field of its own.
class FieldReader {
 public:
  explicit FieldReader(std::string_view bytes) : rest_(bytes) {}

  bool AtEnd() const { return rest_.empty(); }

  // The next field. Raises InputPastEndOfFile at the end.
  std::string Next();

 private:
  std::string_view rest_;
};

// A line that FieldReader reads back: the text in double quotes, CR LF. Nothing is escaped.
std::string QuotedLine(std::string_view text);

}  // namespace zq
