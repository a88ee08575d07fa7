#include "help/HelpVersions.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "help/HelpText.h"

namespace zq {
namespace {

struct LeastVersion {
  std::int32_t number;
  std::string_view text;
};

constexpr LeastVersion kHelpVersions[] = {
    {16, "4.72.7290"}, {17, "4.72.7323"}, {18, "4.72.7325"}, {19, "4.72.8164.0"},
    {20, "4.73.8252"}, {21, "4.73.8412"}, {22, "4.73.8474"}, {23, "4.73.8561"},
};

constexpr LeastVersion kBrowserVersions[] = {
    {256, "4.70.1155"},      {257, "4.70.1158"},      {258, "4.70.1215"},      {259, "4.70.1300"},
    {260, "4.71.1008.3"},    {261, "4.71.1712.5"},    {262, "4.72.2106.7"},    {263, "4.72.3110.03"},
    {264, "4.72.3612.1707"}, {265, "5.00.0518.5"},    {266, "5.00.0910.1308"}, {267, "5.00.2014.213"},
    {268, "5.00.2314.1000"}, {269, "5.00.2614.3500"}, {270, "5.0.2717.2000"},  // one zero only
};

struct FriendlyName {
  std::string_view version;
  std::string_view name;
};

constexpr FriendlyName kHelpNames[] = {
    {"4.72.7290.00", "1.0"},   {"4.72.7323.00", "1.1"},  {"4.72.7325.00", "1.1a"},
    {"4.72.8164.00", "1.1b"},  {"4.73.8252.00", "1.2"},  {"4.73.8412.00", "1.21"},
    {"4.73.8474.00", "1.21a"}, {"4.73.8561.00", "1.22"}, {"4.74.8566.00", "1.3"},
};

// Not all of these endings are what GetFileVersionText makes; such a version has no name.
constexpr FriendlyName kBrowserNames[] = {
    {"4.70.1155.0000", "3.0"},
    {"4.70.1158.0000", "3.0 OSR2"},
    {"4.70.1215.0000", "3.02"},
    {"4.70.1300.0000", "3.02"},
    {"4.71.1008.3000", "4.0 PP2"},
    {"4.71.1712.5000", "4.0"},
    {"4.72.2106.7000", "4.01"},
    {"4.72.3110.0300", "4.0 SP1"},
    {"4.72.3612.1707", "4.0 SP2"},
    {"5.00.0518.5000", "5.0 beta 1"},
    {"5.00.0910.1308", "5.0 beta 2"},
    {"5.00.2014.2130", "5.0"},
    {"5.00.2314.1000", "5.0a (Office 2000)"},
    {"5.00.2614.3500", "5.0b (Windows 98 SE)"},
    {"5.00.2717.2000", "5.0c (Icon Security Issue Update)"},
};

std::optional<std::string_view> Find(std::span<const LeastVersion> table, std::int32_t number) {
  const auto found = std::ranges::find(table, number, &LeastVersion::number);
  if (found == table.end()) return std::nullopt;
  return found->text;
}

std::string_view Find(std::span<const FriendlyName> table, std::string_view version) {
  const auto found = std::ranges::find_if(
      table, [version](const FriendlyName& row) { return EqualInAnyCase(row.version, version); });
  return found == table.end() ? "unknown" : found->name;
}

// Digits, with zeros before them up to `least`.
std::string Digits(std::uint32_t number, std::size_t least) {
  std::string digits = std::to_string(number);
  if (digits.size() < least) digits.insert(0, least - digits.size(), '0');
  return digits;
}

// A number of four bytes, the lowest first.
std::uint32_t Number(std::string_view bytes, std::size_t offset) {
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[offset + i]);
  return number;
}

constexpr std::uint32_t kMostInformationBytes = 64000;
constexpr std::uint32_t kSpareBytes = 16;
constexpr std::size_t kOffsetOfFileVersionMs = 8;
constexpr std::size_t kOffsetOfFileVersionLs = 12;

}  // namespace

std::optional<std::string_view> LeastHelpVersion(std::int32_t minHHVersion) {
  return Find(kHelpVersions, minHHVersion);
}

std::optional<std::string_view> LeastBrowserVersion(std::int32_t minIEVersion) {
  return Find(kBrowserVersions, minIEVersion);
}

std::string_view HelpFriendlyName(std::string_view version) {
  return Find(kHelpNames, version);
}

std::string_view BrowserFriendlyName(std::string_view version) {
  return Find(kBrowserNames, version);
}

std::int32_t WindowsVersionOf(const SystemVersion& version) {
  if (version.platformId == 1) {
    if (version.minorVersion == 0) return 2;
    if (version.minorVersion == 10) return 4;
  } else if (version.platformId == 2) {
    if (version.majorVersion == 3) return 1;
    if (version.majorVersion == 4) return 3;
    if (version.majorVersion == 5) return 5;
  }
  return 0;
}

std::optional<std::string> GetFileVersionText(FileVersions& versions, const std::string& file) {
  const std::uint32_t size = std::min(versions.InformationSize(file), kMostInformationBytes);
  const std::optional<std::string> fixed = versions.FixedInformation(file, size + kSpareBytes);
  if (!fixed || fixed->size() < kFixedVersionBytes) return std::nullopt;

  const std::uint32_t ms = Number(*fixed, kOffsetOfFileVersionMs);
  const std::uint32_t ls = Number(*fixed, kOffsetOfFileVersionLs);
  std::string text = Digits(ms >> 16, 1) + "." + Digits(ms & 0xFFFF, 2) + ".";
  if (ls >> 16 < 1) {
    text += Digits(ls & 0xFFFF, 4);
  } else {
    text += Digits(ls >> 16, 2) + "." + Digits(ls & 0xFFFF, 2);
  }
  return text;
}

}  // namespace zq
