#include "platform/FieldReader.h"

#include <algorithm>

#include "platform/RunTimeError.h"

namespace zq {

std::string FieldReader::Next() {
  if (AtEnd()) throw RunTimeError(ErrorNumber::InputPastEndOfFile);
  rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size()));

  std::string field;
  if (!rest_.empty() && rest_.front() == '"') {
    rest_.remove_prefix(1);
    const std::size_t end = std::min(rest_.find('"'), rest_.size());
    field = rest_.substr(0, end);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size()));
  } else {
    const std::size_t end = std::min(rest_.find_first_of(",\r\n"), rest_.size());
    field = rest_.substr(0, end);
    field.erase(field.find_last_not_of(' ') + 1);
    rest_.remove_prefix(end);
  }

  if (rest_.starts_with("\r\n")) {
    rest_.remove_prefix(2);
  } else if (!rest_.empty() && (rest_.front() == ',' || rest_.front() == '\r' || rest_.front() == '\n')) {
    rest_.remove_prefix(1);
  }
  return field;
}

std::string QuotedLine(std::string_view text) {
  std::string line = "\"";
  line += text;
  line += "\"\r\n";
  return line;
}

}  // namespace zq
