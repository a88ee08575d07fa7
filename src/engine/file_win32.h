// An open file, or a named stream of one, on Windows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/WindowsContent.h"
#include "engine/WindowsOpening.h"
#include "engine/paths_win32.h"
#include "engine/system_win32.h"

namespace zq::engine::win32 {

// What is the same for all that is opened in a folder.
struct FolderPlace {
  WindowsCalls* calls = nullptr;
  std::shared_ptr<Volume> volume;
  std::wstring path;
  std::wstring finalPath;  // see CheckPlace
};

class WindowsFile final : public File {
 public:
  WindowsFile(FolderPlace place, std::wstring name, OpenedFile opened)
      : place_(std::move(place)), name_(std::move(name)), opened_(std::move(opened)) {}
  ~WindowsFile() override;

  // Opens a file, or a stream when `name` has a colon in it, for all that the engine does with it.
  static Status Open(const FolderPlace& place, const std::wstring& name, Access access,
                     std::unique_ptr<File>& file);
  static Status Add(const FolderPlace& place, const std::wstring& name, Access access, NewFile kind,
                    std::unique_ptr<File>& file);

  Status Info(FileInfo& info) override;
  // A stream's is that of its file.
  Status Identity(FileId& id) override;
  std::size_t Alignment() const override { return opened_.direct ? place_.volume->sectorBytes : 1; }

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
  Status Trim() override;

  HANDLE Handle() const { return opened_.handle; }
  bool IsDirect() const { return opened_.direct; }
  const Volume& OnVolume() const { return *place_.volume; }

 private:
  std::wstring Path() const { return JoinWide(place_.path, name_); }

  FolderPlace place_;
  std::wstring name_;
  OpenedFile opened_;
  std::uint32_t names_ = 1;       // hard links, as they were last seen
  std::optional<Places> places_;  // as they were when the file was first looked at
};

}  // namespace zq::engine::win32
