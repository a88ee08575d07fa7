#include "engine/Failure.h"

#include "engine/EngineEvents.h"

namespace zq::engine {
namespace {

// System texts end in a full stop and a line break on one system, and in neither on the other.
std::string WithoutTail(std::string text) {
  while (!text.empty() && (text.back() == '.' || text.back() == ' ')) text.pop_back();
  return text;
}

}  // namespace

std::string MakeOneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const auto value = static_cast<unsigned char>(c);
    if (value < 0x20 || value == 0x7F) {
      if (!line.empty() && line.back() != ' ') line += ' ';
    } else {
      line += c == '"' ? '\'' : c;
    }
  }
  return line;
}

Failure MakeFailure(const char* operation, const std::string& path, const Status& status) {
  if (status.trouble == Trouble::Refused) return MakeFailure(operation, path, status.text);
  std::string reason = WithoutTail(MakeOneLine(status.text));
  if (reason.empty()) reason = "the system gives no reason";
  const std::int32_t code = status.code != 0 ? status.code : kEngineErrorCode;
  reason = ": " + reason + " (" + std::to_string(code) + ')';
  return {code, MakeOneLine(std::string(operation) + ' ' + path) + reason, operation + reason,
          status.trouble};
}

Failure MakeFailure(const char* operation, const std::string& path, const std::string& reason) {
  return {kEngineErrorCode, MakeOneLine(std::string(operation) + ' ' + path + ": " + reason),
          MakeOneLine(operation + (": " + reason))};
}

void Require(const Status& status, const char* operation, const std::string& path) {
  if (!status.Ok()) throw MakeFailure(operation, path, status);
}

}  // namespace zq::engine
