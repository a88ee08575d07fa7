// Files: what the program's logic needs of the file system. The engine has a device layer of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace zq {

// File attributes, with the values of the system (FILE_ATTRIBUTE_*).
inline constexpr std::uint32_t kAttributeReadOnly = 0x01;
inline constexpr std::uint32_t kAttributeHidden = 0x02;
inline constexpr std::uint32_t kAttributeSystem = 0x04;
inline constexpr std::uint32_t kAttributeDirectory = 0x10;
inline constexpr std::uint32_t kAttributeArchive = 0x20;
inline constexpr std::uint32_t kAttributeNormal = 0x80;

// One directory entry. The name is the field's whole text; a caller that may meet padding behind a null cuts
// it off.
struct FileEntry {
  std::string name;
  std::uint32_t attributes = 0;
  std::uint32_t sizeHigh = 0;  // the two words of the length in bytes
  std::uint32_t sizeLow = 0;
};

// How a listing came to its end.
enum class ListEnd {
  NothingFound,  // no entry matches, or the folder isn't there
  Complete,      // every entry was handed over
  BrokenOff,     // the system refused, at the start or on the way: there may be more
};

// Paths are UTF-8 and may be as long as the file system allows.
class Files {
 public:
  virtual ~Files() = default;

  // The first entry that matches `pattern` (a path whose last part may hold wildcards), or nothing.
  virtual std::optional<FileEntry> FindEntry(const std::string& pattern) = 0;

  // Hands each entry that matches `pattern` to `visit`, "." and ".." too, in the order of the file
  // system, while the enumeration is open.
  virtual ListEnd List(const std::string& pattern, const std::function<void(const FileEntry&)>& visit) = 0;

  // The attributes of `path`, or nothing when they can't be read.
  virtual std::optional<std::uint32_t> Attributes(const std::string& path) = 0;

  // Each gives false when the system refuses.
  virtual bool SetAttributes(const std::string& path, std::uint32_t attributes) = 0;
  virtual bool MakeFolder(const std::string& path) = 0;
  virtual bool Remove(const std::string& path) = 0;

  // The whole content of a file. Needs no right to write. Raises FileNotFound, PathNotFound,
  // PermissionDenied (locked) or PathFileAccessError.
  virtual std::string Read(const std::string& path) = 0;

  // Empties a file or creates it, and writes its new content; closed on return. Its attributes stay. Raises
  // as Read does, and DiskFull.
  virtual void Write(const std::string& path, const std::string& bytes) = 0;

  // The same over the old content, which is cut to the new length at the end: the file is never empty in
  // between. For records of a fixed length.
  virtual void WriteRecord(const std::string& path, const std::string& bytes) = 0;

  // The process's current directory.
  virtual std::string CurrentFolder() = 0;
};

}  // namespace zq
