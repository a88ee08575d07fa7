// What a mounted file system does with what is overwritten in it, and with the names in its folders.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "engine/Device.h"
#include "engine/entry_posix.h"
#include "engine/placement_posix.h"

namespace zq::engine {

constexpr std::int64_t kExtMagic = 0xEF53;
constexpr std::int64_t kXfsMagic = 0x58465342;

// File systems that leave a name where it stood in its folder when the entry goes. ext4 clears it.
struct NamesStay {
  std::int64_t magic;
  NameRoom::Kind kind;
};

// What is the same for all files of a mounted file system.
struct Volume {
  dev_t device = 0;
  std::int64_t magic = 0;
  std::uint32_t clusterBytes = 0;
  // Empty, or why nothing in it may be overwritten: it is known to write elsewhere, or isn't known not to.
  std::string notInPlace;
  std::string caveat;  // as FileInfo::caveat, for all its files
  bool isNtfs3g = false;
  bool isFuse = false;
  bool isInMemory = false;
  bool oneFlushForAll = false;  // it is one of kOneDeviceFileSystems
  // A journal takes the changes of names, lengths and dates in their order: when the last is durable, so
  // are all before it.
  bool isOrdered = false;
  bool mayHaveJournal = false;   // an ext file system of which nothing tells that it has none
  bool journalsData = false;     // content goes through the journal, too
  bool mayJournalData = false;   // nothing tells whether it does: each file is asked
  bool mayClearJournal = false;  // an ext4 that we are allowed to
  bool countsNamesInUtf16 = false;
  const NamesStay* namesStay = nullptr;

  bool MayNotClearJournal() const { return mayHaveJournal && !mayClearJournal; }
  // ntfs-3g takes what is written at once, and each of its flushes is one of the whole device.
  bool HasOneFlush() const { return oneFlushForAll || isNtfs3g; }
};

// What the file system of the folder `fd` is. One that isn't known to overwrite in place is refused by
// Volume::notInPlace, unless `trusted` says that the user insists.
Status LookAtVolume(int fd, const EntryFacts& facts, bool trusted, Volume& volume);

// Empty, or why a file with these flags (FS_IOC_GETFLAGS) that lies so isn't overwritten where it lies.
std::string WhyNotInPlace(const Volume& volume, int flags, const Placement& placement);

// What `flags` of Checkpoint can ask for: to clear the journal of what was in it, too.
constexpr std::uint32_t kZeroOut = 2;

// ext4's call (Linux 5.14) to write all that is in its journal to its place, and to clear the journal. False
// where it isn't allowed or isn't known.
bool Checkpoint(int fd, std::uint32_t flags);

}  // namespace zq::engine
