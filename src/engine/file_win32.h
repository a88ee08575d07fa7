// An open file, or a named stream of one, on Windows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/paths_win32.h"
#include "engine/volume_win32.h"

namespace zq::engine::win32 {

inline constexpr char kReadOnly[] = "it is read-only";

class WindowsFile final : public File {
 public:
  WindowsFile(UniqueHandle handle, std::wstring folderPath, std::wstring name, const Volume& volume,
              bool direct)
      : handle_(std::move(handle)),
        folderPath_(std::move(folderPath)),
        name_(std::move(name)),
        volume_(volume),
        direct_(direct) {}

  // Opens a file, or a stream when `name` has a colon in it, for all that the engine does with it.
  static Status Open(const std::wstring& folderPath, const std::wstring& name, const Volume& volume,
                     Access access, DWORD disposition, std::unique_ptr<File>& file);

  Status Info(FileInfo& info) override;
  Status Identity(FileId& id) override;
  std::size_t Alignment() const override { return direct_ ? volume_.sectorBytes : 1; }

  Status Write(std::uint64_t offsetBytes, std::span<const std::byte> data, std::size_t& written) override;
  Status Flush() override;

  // Unbuffered reads don't know the cache. For the others there is no way past it.
  Status DropCache() override;
  Status Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) override;

  Status ListStreams(std::vector<std::string>& names) override;
  Status OpenStream(const std::string& name, Access access, std::unique_ptr<File>& stream) override;

  Status SetLength(std::uint64_t lengthBytes) override;
  Status SetDates() override;
  Status Rename(const std::string& newName) override;

  // The file's own flush writes the log of its volume, and so its entry.
  Status FlushEntry() override;
  Status Remove() override;

  HANDLE Handle() const { return handle_.Get(); }
  bool IsDirect() const { return direct_; }
  const Volume& OnVolume() const { return volume_; }

 private:
  std::wstring Path() const { return JoinWide(folderPath_, name_); }

  UniqueHandle handle_;
  std::wstring folderPath_;
  std::wstring name_;
  Volume volume_;
  bool direct_;
};

}  // namespace zq::engine::win32
