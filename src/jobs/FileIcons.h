// The icon cache of the job list: one small picture for each file type, in order of first use.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zq {

class Regional;

// What the cache needs of the shell and of the picture list. None of these raises: what fails is passed
// over, and the cache goes on.
class IconPainter {
 public:
  virtual ~IconPainter() = default;

  // The Windows folder, with or without a backslash at its end; "" when it isn't to be had.
  virtual std::string WindowsFolder() = 0;

  // Asks the shell for the small system icon size of `key` with `flags` beside SHGFI_SYSICONINDEX.
  virtual void MeasureSmallIcon(const std::string& key, std::uint32_t flags) = 0;

  // Clears the drawing surface and draws the shell's icon of `key` on it, with `flags` beside SHGFI_ICON.
  virtual void DrawFileIcon(const std::string& key, std::uint32_t flags) = 0;

  // Adds the drawing surface as a further picture of the list, blank if nothing was drawn.
  virtual void AddDrawnPicture() = 0;
};

// The flags of SHGetFileInfo that the cache passes.
inline constexpr std::uint32_t kSmallIcon = 0x1;
inline constexpr std::uint32_t kSmallIconByAttributes = 0x11;  // by the name alone: no file is touched

class FileIcons {
 public:
  FileIcons(IconPainter& painter, Regional& regional) : painter_(painter), regional_(regional) {}

  // The picture, counted from 1, for the file type `key` (a dot and three upper-case characters). A
  // type that is met first gets a new picture, kept under `path`, the first file of that type. A key
  // that ends in a backslash is replaced by the Windows folder: the picture of a folder.
  // Failures are passed over: the type then shows a blank picture.
  int IconForExtension(std::string& key, const std::string& path);

  // The picture of the file row of `path`: that of its type if the fourth character from the end is a
  // dot, else the plain file, so that only extensions of exactly three characters have one of their own.
  // The key of the type is taken from `keySource`, the path or the bare name. A character is a code
  // point of UTF-8. Raises InvalidProcedureCall for a path of three characters or fewer.
  int IconForFileRow(const std::string& path, const std::string& keySource);

  // The number of pictures, which never falls.
  int Count() const;

 private:
  IconPainter& painter_;
  Regional& regional_;
  // The types of the pictures behind the built-in two, in order: the end of the upper-cased path under
  // which each is kept.
  std::vector<std::string> types_;
};

}  // namespace zq
