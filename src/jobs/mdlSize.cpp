#include "jobs/mdlSize.h"

#include <cmath>
#include <cstdint>
#include <optional>

#include "platform/Files.h"
#include "platform/NumberFormat.h"
#include "platform/RunTimeError.h"

namespace zq {
namespace {

constexpr double kKilo = 1024;
constexpr double kMega = kKilo * 1024;
constexpr double kGiga = kMega * 1024;

std::string WholePart(double value) {
  // 2^63; also false for what isn't a number.
  if (!(std::fabs(value) < 9223372036854775808.0)) throw RunTimeError(ErrorNumber::Overflow);
  return std::to_string(static_cast<std::int64_t>(value));
}

}  // namespace

FixedPoint GetFileSize64(Files& files, const std::string& path) {
  const std::optional<FileEntry> entry = files.FindEntry(path);
  if (!entry) return FixedPoint();
  return FixedPoint::FromWords(entry->sizeHigh, entry->sizeLow);
}

std::string FormatFileSize(double sizeBytes, Regional& regional) {
  try {
    if (sizeBytes >= kGiga) return FormatTwoDecimals(sizeBytes / 1024 / 1024 / 1024, regional) + " GB";
    if (sizeBytes >= kMega) return FormatTwoDecimals(sizeBytes / 1024 / 1024, regional) + " MB";
    if (sizeBytes >= kKilo) return FormatTwoDecimals(sizeBytes / 1024, regional) + " KB";
    return WholePart(sizeBytes) + " Bytes";
  } catch (const RunTimeError&) {
    return "0 Bytes";
  }
}

}  // namespace zq
