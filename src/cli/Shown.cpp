#include "cli/Shown.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "platform/Utf8.h"

namespace zq::cli {
namespace {

// Changes what a terminal does, or the order in which it shows what follows.
constexpr bool IsActive(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x061C || c == 0x200E || c == 0x200F ||
         (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0xFEFF;
}

std::string Hex(const char* start, unsigned value, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "%s%0*X", start, digits, value);
  return text;
}

std::string Counted(std::size_t count, const char* one, const char* many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

}  // namespace

std::string Shown(std::string_view path) {
  std::string shown;
  while (!path.empty()) {
    const Character character = FirstCharacter(path);
    if (!character.isValid) {
      shown += Hex("\\x", static_cast<unsigned char>(path.front()), 2);
    } else if (character.value == '\n') {
      shown += "\\n";
    } else if (character.value == '\r') {
      shown += "\\r";
    } else if (character.value == '\t') {
      shown += "\\t";
    } else if (IsActive(character.value)) {
      shown += character.value < 0x100 ? Hex("\\x", static_cast<unsigned>(character.value), 2)
                                       : Hex("\\u", static_cast<unsigned>(character.value), 4);
    } else {
      shown += path.substr(0, character.sizeBytes);
    }
    path.remove_prefix(character.sizeBytes);
  }
  return shown;
}

std::size_t ColumnsAtMost(std::string_view shown) {
  std::size_t count = 0;
  for (const char c : shown) {
    if (!IsContinuation(c)) count += static_cast<unsigned char>(c) < 0x80 ? 1 : 2;
  }
  return count;
}

std::string Shortened(std::string_view shown, std::size_t columns) {
  constexpr std::string_view kDots = "...";
  if (ColumnsAtMost(shown) <= columns) return std::string(shown);
  if (columns <= kDots.size()) return std::string(kDots.substr(0, columns));
  std::size_t tooMany = ColumnsAtMost(shown) - (columns - kDots.size());
  while (tooMany > 0) {
    const std::size_t size = FirstCharacter(shown).sizeBytes;
    tooMany -= std::min(tooMany, ColumnsAtMost(shown.substr(0, size)));
    shown.remove_prefix(size);
  }
  return std::string(kDots) + std::string(shown);
}

std::string ShownBytes(std::uint64_t bytes) {
  static constexpr const char* kUnits[] = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  if (bytes < 1024) return Counted(static_cast<std::size_t>(bytes), "byte", "bytes");
  double amount = static_cast<double>(bytes) / 1024;
  std::size_t unit = 0;
  // 1023.95 would be shown as 1024.0.
  while (amount >= 1023.95 && unit + 1 < std::size(kUnits)) {
    amount /= 1024;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.1f %s", amount, kUnits[unit]);
  return text;
}

std::string ShownSeconds(std::uint64_t seconds) {
  const std::uint64_t minutes = seconds / 60;
  if (minutes == 0) return std::to_string(seconds) + " s";
  if (minutes < 60) return std::to_string(minutes) + " min " + std::to_string(seconds % 60) + " s";
  return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
}

std::string ShownTotals(const Totals& totals) {
  std::string text;
  const auto add = [&text](const std::string& part) {
    if (!text.empty()) text += ", ";
    text += part;
  };
  if (totals.files > 0) add(Counted(totals.files, "file", "files") + " (" + ShownBytes(totals.bytes) + ')');
  if (totals.folders > 0) add(Counted(totals.folders, "folder", "folders"));
  if (totals.links > 0) add(Counted(totals.links, "link", "links"));
  if (totals.others > 0) add(Counted(totals.others, "other", "others"));
  return text.empty() ? "nothing" : text;
}

}  // namespace zq::cli
