#include "engine/Device.h"

#include "engine/Storage.h"

namespace zq::engine {
namespace {

// Does each transfer when it is begun.
class SerialQueue final : public TransferQueue {
 public:
  std::size_t Depth() const override { return 1; }

  void BeginWrite(File& file, std::uint64_t offsetBytes, std::span<const std::byte> data,
                  std::size_t tag) override {
    ended_.tag = tag;
    ended_.status = file.Write(offsetBytes, data, ended_.bytes);
  }

  void BeginRead(File& file, std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t tag) override {
    ended_.tag = tag;
    ended_.status = file.Read(offsetBytes, data, ended_.bytes);
  }

  Ended Wait() override { return std::move(ended_); }

 private:
  Ended ended_;
};

}  // namespace

Status File::Identity(FileId&) {
  return Status::Refusal("it is no file of its own");
}

void Folder::Storage(StorageInfo& storage) {
  storage = {};
}

Status Folder::Identity(EntryId&) {
  return Status::Refusal("it can't be told from others");
}

Status Folder::OpenAbove(std::unique_ptr<Folder>&) {
  return Status::Refusal("the system has no way to it");
}

Status Device::Identify(const std::string&, EntryId&) {
  return Status::Refusal("it can't be told from others");
}

std::unique_ptr<TransferQueue> Device::MakeQueue() {
  return std::make_unique<SerialQueue>();
}

void Device::FlushMany(std::span<File* const> files, std::span<Status> outcomes) {
  for (std::size_t i = 0; i < files.size(); ++i) outcomes[i] = files[i]->Flush();
}

void Device::FlushEntries(std::span<File* const> files, std::span<Status> outcomes) {
  for (std::size_t i = 0; i < files.size(); ++i) outcomes[i] = files[i]->FlushEntry();
}

void Device::FlushFolders(std::span<Folder* const> folders, std::span<Status> outcomes) {
  for (std::size_t i = 0; i < folders.size(); ++i) outcomes[i] = folders[i]->Flush();
}

void Device::WriteHome(Folder&) {
}

Status Device::ClearTraces(Folder&, const std::function<bool()>&, std::string&) {
  return {};
}

}  // namespace zq::engine
