// What the Windows device knows of a volume, and whether files there are overwritten in place.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace zq::engine::win32 {

// One for all that is opened beneath a folder: a volume mounted in a folder is a link, and never entered.
struct Volume {
  std::uint32_t clusterBytes = 0;
  std::uint32_t sectorBytes = 0;
  std::string fileSystem;   // as the system names it: "NTFS". Empty: not told
  std::uint32_t flags = 0;  // GetVolumeInformation's
  std::wstring root;
  std::wstring device;  // by which the volume itself is opened. Empty: not known
  bool isRemote = false;
  // A drive of this machine, whose flush of one file is a flush of the device.
  bool flushesAtOnce = false;

  bool IsNtfs() const { return fileSystem == "NTFS"; }
  // What a server calls NTFS can be anything.
  bool NamesLieInRecords() const { return IsNtfs() && !isRemote; }
  bool HasStreams() const { return (flags & 0x00040000) != 0; }  // FILE_NAMED_STREAMS
  bool HasExtendedAttributes() const {
    return (flags & 0x00800000) != 0;
  }  // FILE_SUPPORTS_EXTENDED_ATTRIBUTES

  // Whether overwriting in place was asked for where it isn't known to work.
  bool isTrusted = false;
  std::uint32_t pathForm = 0;  // of those in kPathForms the one that is to be had here

  // What was found out meanwhile, so that it isn't asked again for each file.
  bool mayBackExternally = false;  // at first MayBackExternally
  bool protectsClusters = true;
  // How much longer is waited in all for what is never given.
  std::chrono::milliseconds patience{3'000};
};

// Why files on the volume aren't wiped. Empty if they are.
std::string WhyNotOn(const Volume& volume);
// What the user has to know if they are: a sentence, or empty.
std::string CaveatOf(const Volume& volume);
// Whether files there may be kept compressed by another part of the system, which only a question tells.
bool MayBackExternally(const Volume& volume);
// The length that no file there goes beyond; 0: none that matters.
std::uint64_t MostBytesOn(const Volume& volume);

}  // namespace zq::engine::win32
