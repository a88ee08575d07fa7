// The ground for tests that destroy files: a guard that lets nothing happen outside the cage, and
// folders that a test makes for itself.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zq::test {

// Throws a DriverError unless this process runs in the cage of scripts/wine-run.sh, with C: as its
// only drive, or with such drives besides as are smaller than 64 MiB.
void RequireCage();

// The folder that this program lies in, without a backslash at its end. The files that
// zq_run_with() names lie beside it.
std::string ProgramFolder();

// A file's bytes; throws a DriverError if it can't be read.
std::string ReadFileBytes(const std::string& path);
void WriteFileBytes(const std::string& path, std::string_view bytes);

// Files, folders and links count. No link is followed.
bool PathExists(const std::string& path);

// Whether any file below `folder`, itself or its name, holds `bytes`: what a wipe should have
// destroyed and what a program may have left of it in its own folder.
bool FolderHolds(const std::string& folder, std::string_view bytes);

// A new folder below the program's own, removed with all that is in it at the end of its scope.
// Throws a DriverError outside the cage.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::string& Path() const { return path_; }

  // The full path of a name in here, which may hold backslashes.
  std::string operator/(std::string_view name) const;

  // Makes a file in here, its folders included, and gives its full path. Attributes are those of
  // SetFileAttributes, 0 leaves the usual ones.
  std::string Make(std::string_view name, std::string_view bytes, std::uint32_t attributes = 0) const;

  // Copies a file or a folder that lies beside this program into here, and gives its full path.
  std::string CopyIn(std::string_view name) const;

 private:
  std::string path_;
};

}  // namespace zq::test
