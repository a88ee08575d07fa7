#include "manager/BinRecord.h"

#include "platform/PathPlace.h"

namespace zq {
namespace {

// Both versions begin with three numbers of 64 bits: version, size, time. Then version 1 has a path of
// MAX_PATH units, filled up with nulls; version 2 a count of units, the closing null among them, and so many.
constexpr std::size_t kPathPlace = 24;
constexpr std::size_t kFixedPathUnits = 260;
constexpr std::size_t kCountedPathPlace = 28;

std::uint64_t NumberAt(std::string_view bytes, std::size_t place, std::size_t count) {
  std::uint64_t number = 0;
  for (std::size_t i = count; i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[place + i]);
  return number;
}

void AppendUtf8(std::string& text, char32_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
    return;
  }
  const int following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
  const unsigned marks = following == 1 ? 0xC0 : following == 2 ? 0xE0 : 0xF0;
  text += static_cast<char>(marks | character >> (6 * following));
  for (int i = following; i-- > 0;) text += static_cast<char>(0x80 | (character >> (6 * i) & 0x3F));
}

// Up to the first null; nothing if there is none. A character that has no place in a line of text, and half
// of a pair, become the replacement character.
std::optional<std::string> PathIn(std::string_view units) {
  constexpr char32_t kReplacement = 0xFFFD;
  std::string path;
  for (std::size_t i = 0; i + 1 < units.size(); i += 2) {
    char32_t unit = static_cast<char32_t>(NumberAt(units, i, 2));
    if (unit == 0) return path;
    if (unit >= 0xD800 && unit < 0xDC00 && i + 3 < units.size()) {
      const auto second = static_cast<char32_t>(NumberAt(units, i + 2, 2));
      if (second >= 0xDC00 && second < 0xE000) {
        AppendUtf8(path, 0x10000 + ((unit - 0xD800) << 10) + (second - 0xDC00));
        i += 2;
        continue;
      }
    }
    const bool isHalf = unit >= 0xD800 && unit < 0xE000;
    // The marks that turn the direction of writing would let a name pass for another.
    const bool turns = (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
    if (isHalf || turns || unit < 0x20 || unit == 0x7F) unit = kReplacement;
    AppendUtf8(path, unit);
  }
  return std::nullopt;
}

std::optional<std::string_view> PathUnits(std::string_view bytes, std::uint64_t version) {
  if (version == 1 && bytes.size() == kPathPlace + 2 * kFixedPathUnits) return bytes.substr(kPathPlace);
  if (version == 2 && bytes.size() >= kCountedPathPlace) {
    const std::uint64_t count = NumberAt(bytes, kPathPlace, 4);
    const std::string_view units = bytes.substr(kCountedPathPlace);
    if (units.size() == 2 * count) return units;
  }
  return std::nullopt;
}

}  // namespace

std::optional<BinRecord> ReadBinRecord(std::string_view bytes) {
  if (bytes.size() < kPathPlace || bytes.size() > kLongestBinRecordBytes) return std::nullopt;
  const std::uint64_t version = NumberAt(bytes, 0, 8);
  const std::optional<std::string_view> units = PathUnits(bytes, version);
  if (!units) return std::nullopt;
  std::optional<std::string> path = PathIn(*units);
  if (!path || !BeginsOnADriveOrShare(*path)) return std::nullopt;
  return BinRecord{static_cast<std::int64_t>(version), NumberAt(bytes, 8, 8), NumberAt(bytes, 16, 8),
                   std::move(*path)};
}

}  // namespace zq
