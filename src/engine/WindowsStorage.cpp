#include "engine/WindowsStorage.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace zq::engine::win32 {
namespace {

using Kind = StorageInfo::Kind;

// Values and layouts are those of winioctl.h.
constexpr std::uint32_t kDeviceProperty = 0;
constexpr std::uint32_t kSeekPenaltyProperty = 7;
constexpr std::uint32_t kTrimProperty = 8;

enum BusType : std::uint32_t {
  kBusAtapi = 2,
  kBusAta = 3,
  kBusSas = 10,
  kBusSata = 11,
  kBusSd = 12,
  kBusMmc = 13,
  kBusNvme = 17,
  kBusScm = 18,
  kBusUfs = 19,
};
// Behind all others may stand anything: a bridge, an array of disks, a file.
constexpr std::uint32_t kBusesOfDisks[] = {kBusAtapi, kBusAta, kBusSas, kBusSata};
constexpr std::uint32_t kBusesOfFlash[] = {kBusSd, kBusMmc, kBusNvme, kBusScm, kBusUfs};

template <std::size_t N>
bool IsOneOf(std::uint32_t bus, const std::uint32_t (&buses)[N]) {
  return std::find(std::begin(buses), std::end(buses), bus) != std::end(buses);
}

// The bytes of one answer, no more of them than it says it has.
class Answer {
 public:
  Answer(WindowsCalls& calls, SystemHandle device, std::uint32_t property) {
    // STORAGE_PROPERTY_QUERY: which property, the standard query, a byte of parameters and its padding.
    std::array<std::byte, 12> query{};
    std::memcpy(query.data(), &property, sizeof property);
    std::size_t got = 0;
    if (calls.Control(device, kStorageQueryProperty, query, bytes_, got) != kSuccess) return;
    // Each begins with the size of its fixed part, as a version, and that of the whole.
    constexpr std::size_t kHead = 8;
    if (got < kHead || got > bytes_.size()) return;
    std::uint32_t wholeBytes = 0;
    std::memcpy(&wholeBytes, bytes_.data() + 4, sizeof wholeBytes);
    if (wholeBytes < kHead || wholeBytes > got) return;
    sizeBytes_ = wholeBytes;
  }

  bool Has(std::size_t offset, std::size_t count) const {
    return offset <= sizeBytes_ && count <= sizeBytes_ - offset;
  }
  std::optional<std::uint32_t> Number(std::size_t offset) const {
    std::uint32_t number = 0;
    if (!Has(offset, sizeof number)) return std::nullopt;
    std::memcpy(&number, bytes_.data() + offset, sizeof number);
    return number;
  }
  // A BOOLEAN that is neither is none.
  std::optional<bool> Truth(std::size_t offset) const {
    if (!Has(offset, 1) || bytes_[offset] > std::byte{1}) return std::nullopt;
    return bytes_[offset] == std::byte{1};
  }
  // The text whose place stands at `offset`, without the blanks around it. Empty if it isn't wholly behind
  // the `headBytes` of fixed fields and inside the answer, or isn't plain text.
  std::string Text(std::size_t offset, std::size_t headBytes) const {
    const std::optional<std::uint32_t> place = Number(offset);
    if (!place || *place < headBytes || !Has(*place, 1)) return {};
    const auto* const begin = reinterpret_cast<const char*>(bytes_.data()) + *place;
    const auto* const limit = reinterpret_cast<const char*>(bytes_.data()) + sizeBytes_;
    const auto* const end = std::find(begin, limit, '\0');
    if (end == limit || !std::all_of(begin, end, [](char c) { return c >= ' ' && c <= '~'; })) return {};
    const std::string_view text(begin, static_cast<std::size_t>(end - begin));
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') + 1 - first));
  }

 private:
  std::array<std::byte, 4096> bytes_{};
  std::size_t sizeBytes_ = 0;  // 0: no answer, or none that can be believed
};

struct Descriptor {
  std::optional<std::uint32_t> bus;
  bool isRemovable = true;
  std::string vendor;
  std::string product;
  std::string serial;
};

Descriptor Describe(const Answer& answer) {
  constexpr std::size_t kHeadBytes = 36;  // up to the raw properties
  Descriptor found;
  if (!answer.Has(0, kHeadBytes)) return found;
  found.isRemovable = answer.Truth(10).value_or(true);
  found.vendor = answer.Text(12, kHeadBytes);
  found.product = answer.Text(16, kHeadBytes);
  found.serial = answer.Text(24, kHeadBytes);
  found.bus = answer.Number(28);
  return found;
}

// Maker and product; "ATA" and "NVMe" in the maker's place are names of protocols.
std::string ModelOf(const Descriptor& found) {
  if (found.vendor.empty() || found.vendor == "ATA" || found.vendor == "NVMe") return found.product;
  return found.product.empty() ? found.vendor : found.vendor + ' ' + found.product;
}

// A volume can be put together of parts of several disks, of which only one would answer.
bool LiesOnOneDisk(WindowsCalls& calls, SystemHandle device) {
  std::array<std::byte, 32> extents{};  // VOLUME_DISK_EXTENTS with room for one
  std::size_t got = 0;
  if (calls.Control(device, kGetVolumeDiskExtents, {}, extents, got) != kSuccess || got < extents.size())
    return false;
  std::uint32_t count = 0;
  std::memcpy(&count, extents.data(), sizeof count);
  return count == 1;
}

}  // namespace

StorageInfo StorageOf(WindowsCalls& calls, const Volume& volume) {
  StorageInfo info;
  if (volume.device.empty() || volume.isRemote) return info;
  Closing device(calls);
  constexpr Opening kToAsk = {0, kShareRead | kShareWrite, kOpenExisting, 0};
  if (calls.Open(volume.device, kToAsk, device.handle) != kSuccess) return info;

  const Descriptor found = Describe(Answer(calls, device.handle, kDeviceProperty));
  info.model = ModelOf(found);
  info.serial = found.serial;
  const std::optional<bool> seeks = Answer(calls, device.handle, kSeekPenaltyProperty).Truth(8);
  const std::optional<bool> trims = Answer(calls, device.handle, kTrimProperty).Truth(8);
  info.trims = trims.value_or(false);
  if (seeks == false || (found.bus && IsOneOf(*found.bus, kBusesOfFlash))) {
    info.kind = Kind::Flash;
  } else if (seeks == true && trims == false && found.bus && IsOneOf(*found.bus, kBusesOfDisks) &&
             !found.isRemovable && !IsMadeUp(info.model) && LiesOnOneDisk(calls, device.handle)) {
    info.kind = Kind::Rotating;
  }
  return info;
}

Status TrimFile(WindowsCalls& calls, SystemHandle file, std::uint64_t lengthBytes) {
  // FILE_LEVEL_TRIM: no key, one range, from the beginning.
  std::array<std::byte, 24> ranges{};
  constexpr std::uint32_t kOne = 1;
  std::memcpy(ranges.data() + 4, &kOne, sizeof kOne);
  std::memcpy(ranges.data() + 16, &lengthBytes, sizeof lengthBytes);
  std::array<std::byte, 4> outcome{};
  std::size_t got = 0;
  if (const Code code = calls.Control(file, kFileLevelTrim, ranges, outcome, got); code != kSuccess) {
    return calls.StatusOf(code);
  }
  std::uint32_t trimmed = 0;
  std::memcpy(&trimmed, outcome.data(), sizeof trimmed);
  return got == outcome.size() && trimmed == kOne ? Status{}
                                                  : Status::Refusal("the device wasn't told of the range");
}

}  // namespace zq::engine::win32
