#include "engine/device_win32.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "engine/calls_win32.h"
#include "engine/file_win32.h"
#include "engine/folder_win32.h"
#include "engine/paths_win32.h"
#include "engine/transfers_win32.h"

namespace zq::engine::win32 {
namespace {

// Flushes files of which each has to be flushed by itself, as over a network, where a flush is a journey of
// its own: threads of the system's pool make several side by side, and nothing else.
class Flushes {
 public:
  void Add(HANDLE file) { files_.push_back(file); }

  // The outcomes, in the order of the files: a system code for each, or ERROR_SUCCESS.
  const std::vector<DWORD>& Run() {
    constexpr std::size_t kFew = 4;
    constexpr int kHelpers = 7;
    codes_.assign(files_.size(), ERROR_SUCCESS);
    const PTP_WORK work =
        files_.size() > kFew ? ::CreateThreadpoolWork(&Flushes::Help, this, nullptr) : nullptr;
    if (work != nullptr) {
      for (int i = 0; i < kHelpers; ++i) ::SubmitThreadpoolWork(work);
    }
    TakeAll();
    if (work != nullptr) {
      // Those that haven't begun have nothing left to do.
      ::WaitForThreadpoolWorkCallbacks(work, TRUE);
      ::CloseThreadpoolWork(work);
    }
    return codes_;
  }

 private:
  static void CALLBACK Help(PTP_CALLBACK_INSTANCE, void* flushes, PTP_WORK) {
    static_cast<Flushes*>(flushes)->TakeAll();
  }
  void TakeAll() {
    for (std::size_t i = next_++; i < files_.size(); i = next_++) {
      if (::FlushFileBuffers(files_[i]) == 0) codes_[i] = ::GetLastError();
    }
  }

  std::vector<HANDLE> files_;
  std::vector<DWORD> codes_;
  std::atomic<std::size_t> next_ = 0;
};

class WindowsDevice final : public Device {
 public:
  WindowsDevice(const DeviceOptions& options, std::unique_ptr<WindowsCalls> calls)
      : options_(options), calls_(std::move(calls)) {}

  Status OpenFolder(const std::string& path, std::unique_ptr<Folder>& folder) override {
    std::wstring longPath;
    if (Status status = LongPath(path, longPath); !status.Ok()) return status;
    return OpenRootFolder(*calls_, longPath, options_.trustFileSystem, folder);
  }

  Status Identify(const std::string& path, EntryId& id) override {
    std::wstring longPath;
    if (Status status = LongPath(path, longPath); !status.Ok()) return status;
    Closing handle(*calls_);
    constexpr Opening kToIdentify = {kReadAttributes | kSynchronize, kShareRead | kShareWrite | kShareDelete,
                                     kOpenExisting, kBackupSemantics | kOpenReparsePoint | kOpenNoRecall};
    if (const Code code = calls_->Open(longPath, kToIdentify, handle.handle); code != kSuccess) {
      return FromCode(code);
    }
    // Without a hold: a handle would keep the entry from going where it goes only with its last one (FAT).
    // NTFS counts in the number itself how often it was given to another file.
    id = {};
    const Code code = calls_->Identity(handle.handle, id.file);
    return code == kSuccess ? Status{} : FromCode(code);
  }

  Status Split(const std::string& path, std::string& folderPath, std::string& name) const override {
    std::wstring longPath;
    if (Status status = LongPath(path, longPath); !status.Ok()) return status;
    const std::size_t root = RootLength(longPath);
    while (longPath.size() > root && longPath.back() == L'\\') longPath.pop_back();
    if (longPath.size() <= root) {
      folderPath = path;
      name.clear();
      return {};
    }
    const std::size_t slash = longPath.rfind(L'\\');
    name = Narrow(longPath.substr(slash + 1));
    folderPath = Narrow(longPath.substr(0, slash + 1));
    std::wstring wide;
    return WideName(name, wide);
  }

  std::string Join(const std::string& folderPath, const std::string& name) const override {
    if (folderPath.empty() || folderPath.back() == '\\') return folderPath + name;
    return folderPath + '\\' + name;
  }

  std::unique_ptr<TransferQueue> MakeQueue() override {
    if (!options_.oneTransferAtATime) {
      if (std::unique_ptr<TransferQueue> queue = MakeWindowsQueue()) return queue;
    }
    return Device::MakeQueue();
  }

  // What was written unbuffered and through has left the system's cache when the write ends. What a flush
  // adds is that of the device's own cache, and one file's is as good as another's for that.
  void FlushMany(std::span<File* const> files, std::span<Status> outcomes) override {
    std::vector<std::wstring> flushed;
    std::vector<std::size_t> apart;
    for (std::size_t i = files.size(); i > 0; --i) {
      auto& file = static_cast<WindowsFile&>(*files[i - 1]);
      const Volume& volume = file.OnVolume();
      if (!file.IsDirect() || !volume.flushesAtOnce) {
        apart.push_back(i - 1);
        continue;
      }
      if (std::find(flushed.begin(), flushed.end(), volume.root) != flushed.end()) continue;
      flushed.push_back(volume.root);
      const Status status = file.Flush();
      if (status.Ok()) continue;
      for (std::size_t other = 0; other < files.size(); ++other) {
        const auto& same = static_cast<WindowsFile&>(*files[other]);
        if (same.IsDirect() && same.OnVolume().root == volume.root) outcomes[other] = status;
      }
    }
    FlushApart(files, apart, outcomes);
  }

  void FlushEntries(std::span<File* const> files, std::span<Status> outcomes) override {
    std::vector<std::size_t> all(files.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    FlushApart(files, all, outcomes);
  }

 private:
  static void FlushApart(std::span<File* const> files, std::span<const std::size_t> which,
                         std::span<Status> outcomes) {
    Flushes flushes;
    for (const std::size_t i : which) flushes.Add(static_cast<WindowsFile&>(*files[i]).Handle());
    const std::vector<DWORD>& codes = flushes.Run();
    for (std::size_t i = 0; i < which.size(); ++i) {
      outcomes[which[i]] = codes[i] == ERROR_SUCCESS ? Status{} : FromCode(codes[i]);
    }
  }

  DeviceOptions options_;
  std::unique_ptr<WindowsCalls> calls_;
};

}  // namespace

std::unique_ptr<Device> MakeDevice(const DeviceOptions& options, std::unique_ptr<WindowsCalls> calls) {
  return std::make_unique<WindowsDevice>(options, std::move(calls));
}

}  // namespace zq::engine::win32

namespace zq::engine {

std::unique_ptr<Device> MakeSystemDevice(const DeviceOptions& options) {
  return win32::MakeDevice(options, win32::MakeSystemCalls());
}

}  // namespace zq::engine
