// What zqwipe never destroys, whatever it is told and whoever confirms it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/Paths.h"

namespace zq::cli {

// By what the system tells one file or folder from all others, under whatever path it is reached.
struct FileId {
  std::uint64_t volume = 0;
  std::uint64_t number = 0;

  bool IsKnown() const { return volume != 0 || number != 0; }
  bool operator==(const FileId&) const = default;
};

// A canonical path, with the identity of each folder from there up to the root. The identities find what
// the texts don't: other cases on a file system that knows none, a folder mounted in a second place.
struct Guarded {
  std::string path;
  FileId id;
  std::vector<FileId> above;
};

// Where the program runs, and for whom.
struct Surroundings {
  PathStyle style = PathStyle::Posix;
  Guarded currentFolder;
  Guarded program;             // the executable file
  std::vector<Guarded> homes;  // those of all users that are known
  std::vector<std::string> mountPoints;
};

struct Candidate {
  std::string given;      // as the user wrote it
  std::string canonical;  // the links on the way to it resolved, but not the entry itself
  FileId id;
};

// Why the path may not be destroyed, to be put behind it: "it is a home folder". Empty if it may.
std::string WhyProtected(const Candidate& candidate, const Surroundings& surroundings);

}  // namespace zq::cli
