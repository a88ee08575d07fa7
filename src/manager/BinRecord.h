// BinRecord: the record that Windows keeps beside each item of the Recycle Bin ("$I..." beside "$R...").
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zq {

// Of a path of any length that Windows knows; a file that is longer is no record.
inline constexpr std::size_t kLongestBinRecordBytes = 28 + 2 * 32768;

struct BinRecord {
  std::int64_t version = 0;     // 1 up to Windows 8.1, 2 since then
  std::uint64_t sizeBytes = 0;  // as it was told when the item was deleted
  std::uint64_t deleted = 0;    // in the system's time: tenths of a microsecond since 1601
  std::string originalPath;     // never empty, on a drive or a share, one line

  bool operator==(const BinRecord&) const = default;
};

// Nothing if the bytes are no record of either version. Anybody may have written them: what is read is good
// for telling the user, and decides nothing.
std::optional<BinRecord> ReadBinRecord(std::string_view bytes);

}  // namespace zq
