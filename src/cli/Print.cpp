#include "cli/Print.h"

#include <ctime>
#include <optional>

#include "cli/System.h"

namespace zq::cli {
namespace {

std::string Formatted(const std::tm* time, const char* format) {
  char text[32] = "";
  if (time != nullptr) std::strftime(text, sizeof text, format, time);
  return text;
}

}  // namespace

bool Write(std::FILE* stream, std::string_view text) {
  return std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0;
}

void Complain(const std::string& text) {
  Write(stderr, "zqwipe: " + text + '\n');
}

bool CanAsk() {
  return IsTerminal(stdin) && IsTerminal(stderr);
}

bool AnswersYes(const std::string& question) {
  Write(stderr, question);
  std::optional<std::string> answer = ReadAnswer();
  if (!answer) {
    Write(stderr, "\n");
    return false;
  }
  while (!answer->empty() && (answer->back() == '\r' || answer->back() == ' ')) answer->pop_back();
  return answer == "yes" && !WasInterrupted();
}

std::string LocalTime() {
  const std::time_t now = std::time(nullptr);
  return Formatted(std::localtime(&now), "%Y-%m-%d %H:%M:%S");
}

std::string WorldTime() {
  const std::time_t now = std::time(nullptr);
  return Formatted(std::gmtime(&now), "%Y-%m-%dT%H:%M:%SZ");
}

}  // namespace zq::cli
