#include "engine/WindowsContent.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <optional>

namespace zq::engine::win32 {
namespace {

constexpr std::uint32_t kTagHsm = 0xC0000004;
constexpr std::uint32_t kTagHsm2 = 0x80000006;
constexpr std::uint32_t kTagWim = 0x80000008;
constexpr std::uint32_t kTagDedup = 0x80000013;
constexpr std::uint32_t kTagWof = 0x80000017;
constexpr std::uint32_t kTagOneDrive = 0x80000021;
// There are sixteen of them, of which each has a number of its own in these four bits.
constexpr std::uint32_t kTagCloud = 0x9000001A;
constexpr std::uint32_t kCloudNumber = 0x0000F000;

struct Refusal {
  std::uint32_t value;
  const char* reason;
};

constexpr const char* kElsewhere = "its content is kept in another place";
constexpr const char* kCompactExe = "it is compressed (compact /exe), and would be written to a new place";

constexpr Refusal kRefusedAttributes[] = {
    {kAttributeCompressed, "it is compressed by the file system"},
    {kAttributeEncrypted, "it is encrypted by the file system"},
    {kAttributeIntegrity, "the file system writes its new data to a new place"},
    {kAttributeOffline, kElsewhere},
    {kAttributeRecallOnDataAccess, kElsewhere},
};

constexpr Refusal kRefusedTags[] = {
    {kTagDedup, "it is deduplicated: what it holds is kept together with that of other files"},
    {kTagWof, kCompactExe},
    {kTagWim, "its content is kept in an image file"},
    {kTagHsm, kElsewhere},
    {kTagHsm2, kElsewhere},
};

// No such thing here, as different file systems and servers put it.
bool IsUnknownToSystem(Code code) {
  return code == kInvalidFunction || code == kNotSupported || code == kInvalidParameter ||
         code == kCallNotImplemented;
}

std::string Coded(const char* text, Code code) {
  return std::string(text) + " (" + std::to_string(code) + ')';
}

template <typename Value>
Value At(std::span<const std::byte> bytes, std::size_t offset) {
  Value value{};
  std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

}  // namespace

bool IsOfCloud(std::uint32_t attributes, std::uint32_t reparseTag) {
  return (attributes & kAttributeReparsePoint) != 0 &&
         ((reparseTag & ~kCloudNumber) == kTagCloud || reparseTag == kTagOneDrive);
}

std::string WhyNotWith(std::uint32_t attributes, std::uint32_t reparseTag, bool isTrusted) {
  const bool isOfCloud = IsOfCloud(attributes, reparseTag);
  if (isOfCloud && (attributes & (kAttributeOffline | kAttributeRecallOnDataAccess)) != 0) {
    return "its content is in the cloud, not on this drive: delete it there, with its versions and from the "
           "cloud's recycle bin";
  }
  for (const Refusal& refused : kRefusedAttributes) {
    if ((attributes & refused.value) != 0) return refused.reason;
  }
  if ((attributes & kAttributeReparsePoint) == 0) return {};
  if (isOfCloud) {
    if (isTrusted) return {};
    return "a cloud service such as OneDrive keeps copies of it: move it to a folder that isn't synchronised "
           "and "
           "wipe it there, then delete its versions in the cloud and empty the cloud's recycle bin";
  }
  for (const Refusal& refused : kRefusedTags) {
    if (reparseTag == refused.value) return refused.reason;
  }
  char tag[16];
  std::snprintf(tag, sizeof tag, "0x%08X", static_cast<unsigned>(reparseTag));
  return std::string("another program keeps its content (reparse tag ") + tag + ')';
}

std::string CaveatOf(std::uint32_t attributes, std::uint32_t reparseTag) {
  if (!IsOfCloud(attributes, reparseTag)) return {};
  return "Of files in a cloud folder only what was on this drive is destroyed: versions may be left in the "
         "cloud, "
         "and in its recycle bin.";
}

std::string WhyNotBehind(WindowsCalls& calls, SystemHandle handle, Volume& volume) {
  if (volume.mayBackExternally) {
    std::array<std::byte, 512> answer;
    std::size_t got = 0;
    const Code code = calls.Control(handle, kGetExternalBacking, {}, answer, got);
    if (code == kSuccess || code == kMoreData || code == kInsufficientBuffer) return kCompactExe;
    if (IsUnknownToSystem(code)) {
      // Nothing is there that would keep files so, and none could be read.
      volume.mayBackExternally = false;
    } else if (code != kNotExternallyBacked) {
      return Coded("whether it is compressed can't be found out", code);
    }
  }
  if (volume.HasExtendedAttributes()) {
    std::uint32_t size = 0;
    const Code code = calls.ExtendedAttributes(handle, size);
    if (code != kSuccess && !IsUnknownToSystem(code)) {
      return Coded("whether it has extended attributes can't be found out", code);
    }
    if (code == kSuccess && size > 0) return "it has extended attributes, which can't be overwritten";
  }
  return {};
}

void ProtectClusters(WindowsCalls& calls, SystemHandle handle, Volume& volume) {
  if (!volume.protectsClusters || volume.isRemote) return;
  // MARK_HANDLE_INFO: what changes are for, a volume's handle, which only that needs, and what is marked.
  std::array<std::byte, 3 * sizeof(void*)> mark{};
  constexpr std::uint32_t kProtect = 1;  // MARK_HANDLE_PROTECT_CLUSTERS
  std::memcpy(mark.data() + 2 * sizeof(void*), &kProtect, sizeof kProtect);
  std::size_t got = 0;
  const Code code = calls.Control(handle, kMarkHandle, mark, {}, got);
  // Where it isn't to be had, the places are compared all the same.
  if (IsUnknownToSystem(code)) volume.protectsClusters = false;
}

std::string FindPlaces(WindowsCalls& calls, SystemHandle handle, const Volume& volume, Places& places) {
  constexpr std::size_t kHead = 16;    // RETRIEVAL_POINTERS_BUFFER: a count, the first cluster, then
  constexpr std::size_t kExtent = 16;  // where the next extent begins in the file, and this one on the volume
  places = {};
  std::array<std::byte, kHead + 128 * kExtent> answer;
  for (std::int64_t start = 0;;) {
    std::array<std::byte, sizeof start> input;
    std::memcpy(input.data(), &start, sizeof start);
    std::size_t got = 0;
    const Code code = calls.Control(handle, kGetRetrievalPointers, input, answer, got);
    if (code == kEndOfFile) {
      if (places.kind == Places::Kind::Untold) places.kind = Places::Kind::InRecord;
      return {};
    }
    if (code != kSuccess && code != kMoreData) {
      if (volume.isRemote || volume.isTrusted) return {};
      return Coded("where it lies on the drive can't be found out", code);
    }
    places.kind = Places::Kind::Clusters;
    if (got < kHead) return "where it lies on the drive can't be found out";
    const std::size_t count = std::min<std::size_t>(At<std::uint32_t>(answer, 0), (got - kHead) / kExtent);
    std::int64_t at = At<std::int64_t>(answer, 8);
    const std::int64_t before = at;
    for (std::size_t i = 0; i < count; ++i) {
      const auto next = At<std::int64_t>(answer, kHead + i * kExtent);
      const auto place = At<std::int64_t>(answer, kHead + i * kExtent + 8);
      // A hole lies nowhere.
      if (place >= 0 && next > at) {
        const std::uint64_t cluster = volume.clusterBytes;
        places.pieces.push_back({static_cast<std::uint64_t>(at) * cluster,
                                 static_cast<std::uint64_t>(place) * cluster,
                                 static_cast<std::uint64_t>(next - at) * cluster});
      }
      at = next;
    }
    if (code == kSuccess) return {};
    if (at <= before) return "where it lies on the drive can't be found out";
    start = at;
  }
}

bool LiesWhereItLay(const Places& before, const Places& now) {
  return before.kind == now.kind && engine::LiesWhereItLay(before.pieces, now.pieces, UINT64_MAX);
}

std::string FindRoom(WindowsCalls& calls, SystemHandle handle, const Volume& volume,
                     std::uint64_t lengthBytes, const Places& places, std::vector<ByteRange>& room) {
  room.clear();
  std::array<std::int64_t, 2 * 128> answer;  // FILE_ALLOCATED_RANGE_BUFFER: offset and length
  for (std::uint64_t start = 0; start < lengthBytes;) {
    const std::array<std::int64_t, 2> asked{static_cast<std::int64_t>(start),
                                            static_cast<std::int64_t>(lengthBytes - start)};
    std::size_t got = 0;
    const Code code = calls.Control(handle, kQueryAllocatedRanges, std::as_bytes(std::span(asked)),
                                    std::as_writable_bytes(std::span(answer)), got);
    if (code != kSuccess && code != kMoreData)
      return Coded("which parts of it hold data can't be found out", code);
    const std::size_t count = got / (2 * sizeof(std::int64_t));
    for (std::size_t i = 0; i < count; ++i) {
      room.push_back(
          {static_cast<std::uint64_t>(answer[2 * i]), static_cast<std::uint64_t>(answer[2 * i + 1])});
    }
    if (code == kSuccess) break;
    const std::uint64_t end = count == 0 ? 0 : room.back().offsetBytes + room.back().sizeBytes;
    if (end <= start) return "which parts of it hold data can't be found out";
    start = end;
  }
  // What is allocated behind the end, too, and whole clusters.
  for (const Piece& piece : places.pieces) room.push_back({piece.offsetBytes, piece.sizeBytes});
  const std::uint64_t cluster = std::max<std::uint32_t>(volume.clusterBytes, 1);
  for (ByteRange& part : room) {
    const std::uint64_t end = (part.offsetBytes + part.sizeBytes + cluster - 1) / cluster * cluster;
    part.offsetBytes -= part.offsetBytes % cluster;
    part.sizeBytes = end - part.offsetBytes;
  }
  std::sort(room.begin(), room.end(),
            [](const ByteRange& a, const ByteRange& b) { return a.offsetBytes < b.offsetBytes; });
  std::vector<ByteRange> joined;
  for (const ByteRange& part : room) {
    if (part.sizeBytes == 0) continue;
    if (joined.empty() || part.offsetBytes > joined.back().offsetBytes + joined.back().sizeBytes) {
      joined.push_back(part);
      continue;
    }
    ByteRange& last = joined.back();
    last.sizeBytes = std::max(last.sizeBytes, part.offsetBytes + part.sizeBytes - last.offsetBytes);
  }
  room = std::move(joined);
  return {};
}

std::vector<std::u16string> StreamNames(std::span<const std::byte> answer) {
  constexpr std::size_t kHead = 24;  // next entry, length of the name in bytes, two sizes of 8 bytes
  std::vector<std::u16string> names;
  for (std::size_t at = 0; at + kHead <= answer.size();) {
    const auto next = At<std::uint32_t>(answer, at);
    const auto length = At<std::uint32_t>(answer, at + 4);
    if (length > answer.size() - at - kHead) break;
    std::u16string name(length / 2, u'\0');
    std::memcpy(name.data(), answer.data() + at + kHead, name.size() * 2);
    // ":name:$DATA"; the content itself is "::$DATA".
    if (name.size() > 1 && !name.starts_with(u"::")) names.push_back(name.substr(1));
    if (next == 0) break;
    at += next;
  }
  return names;
}

}  // namespace zq::engine::win32
