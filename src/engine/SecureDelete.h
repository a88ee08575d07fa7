// The secure-delete engine: destroys files, folders and the free space of a drive so that nothing of them
// can be recovered. The only header of the engine that its users need beside EngineEvents.h.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "engine/Clock.h"
#include "engine/Device.h"
#include "engine/EngineEvents.h"
#include "engine/SeedSource.h"

namespace zq::engine {

class Operation;
struct Place;

// `level` is 3, 5 or 7 throughout and stands for that many rounds of three data writes per byte: a pattern,
// its complement, random data. Each write covers a file to the end of its last cluster and is on the device
// before the next begins. Nothing that was not overwritten, and found so by reading it back, is deleted;
// the one thing removed without is a link, and a link is never followed.
//
// A wipe member returns true only if all it stands for is done. Otherwise LastErrorText says why, and what
// wasn't finished is still there. No member throws; what a handler throws ends the operation as a failure.
// A member called from inside another one's event returns false and disturbs nothing.
class SecureDelete {
 public:
  // Whether a file name matches a mask. "*.*" takes every file and never gets here.
  using MaskMatch = std::function<bool(const std::string& name, const std::string& mask)>;

  // All parameters but the last must outlive the engine.
  SecureDelete(Device& device, SeedSource& seeds, Clock& clock, EngineEvents& events, MaskMatch matches);
  SecureDelete(const SecureDelete&) = delete;
  SecureDelete& operator=(const SecureDelete&) = delete;
  ~SecureDelete();

  // Makes one whole of the calls until EndWhole: what has to be done about the traces that names leave, in
  // folders and in the logs of file systems, is then done at its end, once for each folder and file system. A
  // call outside is a whole of its own. Not to be called from inside an event.
  void BeginWhole() noexcept { isWhole_ = true; }

  // Takes some seconds at most, tells its progress, and can be cancelled; after a call that was cancelled it
  // does what can be done in a moment. False if content may be left in a log, as LastErrorText then tells;
  // Note has what there is to say beside.
  bool EndWhole() noexcept;

  // Wipes and removes one regular file.
  bool WipeFile(const std::string& path, std::int32_t level) noexcept;

  // What is `meant` is what a path led to when the user agreed (Device::Identify). If it leads to anything
  // else by now, that isn't touched: a failure.

  // Wipes and removes several regular files of one folder, which has to be `meantFolder`: its identity as the
  // folder itself tells it, since another one may hold a name of the same file. One that fails stays, and the
  // rest goes on.
  // A hundred thousand of them are no rarity, so what they tell is the caller's own.
  struct NamedFile {
    std::string_view name;
    std::string_view path;  // what events and error texts call it
    const EntryId& meant;
  };
  bool WipeFiles(const std::string& folderPath, std::span<const NamedFile> files, std::int32_t level,
                 const EntryId& meantFolder) noexcept;

  // Wipes all files in the folder and beneath it, and removes the folders and the folder itself. A file
  // that fails stays, with the folders above it, and the rest goes on.
  bool WipeFolder(const std::string& path, std::int32_t level, const EntryId* meant = nullptr) noexcept;

  // Wipes the files whose names match `mask`, beneath the folder too if `includeSubFolders`. Folders stay.
  bool WipeFolderFiles(const std::string& path, const std::string& mask, bool includeSubFolders,
                       std::int32_t level, const EntryId* meant = nullptr) noexcept;

  // Overwrites the free space of the drive with the root folder `drive`.
  bool WipeFreeSpace(const std::string& drive, std::int32_t level) noexcept;

  // Why the latest wipe member returned false: one line without double quotes. Of several failures it is
  // the first, with the number of the others. Empty after a success.
  const std::string& LastErrorText() const { return lastErrorText_; }

  // What there is to say beside the result of the latest wipe member, in sentences for the user: what it
  // could not do though all that it stands for is done, such as that names may be left in a journal that only
  // an administrator may clear; and how many files it has destroyed under names that it wasn't given. Empty
  // mostly.
  const std::string& Note() const { return note_; }

  // Asks the running member to stop; called from inside an event. No file is removed half overwritten.
  void CancelOperation() noexcept {
    if (running_) cancelled_ = true;
  }

 private:
  template <typename Work>
  bool Run(const std::string& subject, std::int32_t level, const Work& work) noexcept;
  template <typename Work>
  bool Guard(const Work& work) noexcept;
  bool ClearTraces() noexcept;
  std::shared_ptr<Place> PlaceAt(const std::string& path);
  void SetError(std::string_view text) noexcept;
  void SetNote() noexcept;
  void TellError(std::int32_t code) noexcept;

  Device& device_;
  SeedSource& seeds_;
  Clock& clock_;
  EngineEvents& events_;
  MaskMatch matches_;
  std::string lastErrorText_;
  std::string note_;
  std::unique_ptr<Operation> operation_;  // none before the first call of a whole
  std::shared_ptr<Place> place_;          // of the last file, if it is kept; goes before operation_
  bool isWhole_ = false;
  bool isFreeSpace_ = false;  // since traces were last cleared
  bool running_ = false;
  bool cancelled_ = false;
  bool wasCancelled_ = false;  // one of the calls of the whole
};

}  // namespace zq::engine
