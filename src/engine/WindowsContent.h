// Where the content of a file on Windows lies, and why overwriting it might not destroy it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "engine/Placement.h"
#include "engine/WindowsCalls.h"
#include "engine/WindowsVolume.h"

namespace zq::engine::win32 {

// Empty, or why a file with these attributes and this reparse tag isn't wiped. Some is done when the user
// insists.
std::string WhyNotWith(std::uint32_t attributes, std::uint32_t reparseTag, bool isTrusted);
// What the user has to know if it is wiped: a sentence, or empty.
std::string CaveatOf(std::uint32_t attributes, std::uint32_t reparseTag);
// Whether a cloud service keeps the file, whole here and in versions there.
bool IsOfCloud(std::uint32_t attributes, std::uint32_t reparseTag);

// Empty, or why what lies behind the attributes keeps the file from being wiped: it was compressed by
// `compact /exe`, of which they tell nothing, or has extended attributes. `handle` needs no right but to read
// attributes, so that nothing is moved by the question.
std::string WhyNotBehind(WindowsCalls& calls, SystemHandle handle, Volume& volume);

struct Places {
  enum class Kind {
    Untold,
    InRecord,  // in the file's record (NTFS), or nowhere if there is nothing
    Clusters,
  };
  Kind kind = Kind::Untold;
  std::vector<Piece> pieces;
};
bool LiesWhereItLay(const Places& before, const Places& now);

// Keeps defragmentation from moving the file for as long as the handle is open, where that is to be had.
void ProtectClusters(WindowsCalls& calls, SystemHandle handle, Volume& volume);

// Returns why the places can't be told where they have to be, or nothing.
std::string FindPlaces(WindowsCalls& calls, SystemHandle handle, const Volume& volume, Places& places);

// The parts of a sparse file that have room on the device (FileInfo::room). `handle` may read.
std::string FindRoom(WindowsCalls& calls, SystemHandle handle, const Volume& volume,
                     std::uint64_t lengthBytes, const Places& places, std::vector<ByteRange>& room);

// The names in the answer to FileStreamInfo (FILE_STREAM_INFO), without that of the content itself, in the
// form "name:$DATA".
std::vector<std::u16string> StreamNames(std::span<const std::byte> answer);

}  // namespace zq::engine::win32
