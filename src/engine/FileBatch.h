// Takes many files through each step of the wipe together, so that one flush serves all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/FileWipe.h"
#include "engine/Operation.h"

namespace zq::engine {

// With small files the flushes are all that takes time: one for each file and pass, and as many again for
// names and removals. Here the pass is written to all files, then made durable once, and so are the names,
// and the removals. A file that fails is taken out and stays, and the others go on. Nothing is removed
// before all files of the batch are overwritten and read back; a cancel until then removes nothing. One that
// comes later leaves of each file either nothing, or the file with its name, overwritten.
class FileBatch {
 public:
  // `makeRoom`, if there is one, closes what others keep open, when the system opens no more.
  explicit FileBatch(Operation& operation, std::function<void()> makeRoom = nullptr)
      : operation_(operation), makeRoom_(std::move(makeRoom)) {}

  // Opens the file `name` of `place`; runs the batch before, if the file would make it too large or is in it
  // under another name, or after, if it is full then. Throws Cancelled; a failure is told as the file's end.
  // It has to be the file that is `meant`, if that is given.
  void AddFile(std::shared_ptr<Place> place, const std::string& name, const std::string& path,
               std::optional<FileId> meant = std::nullopt);
  // A link, of which only the name and the entry are removed.
  void AddLink(std::shared_ptr<Place> place, Entry entry, std::string path);

  // Wipes what is in the batch, which is empty after. Throws Cancelled.
  void Run();
  // Whether a run has ended since the last call: what was in the batch is gone, or has failed.
  bool HasRun() { return std::exchange(hasRun_, false); }

 private:
  struct Item {
    std::shared_ptr<Place> place;
    std::optional<FileWipe> file;  // none for a link
    Entry link;                    // as it is called by now
    engine::Item linkItem;
    std::optional<Failure> failure = {};  // it is out of the batch, and stays
    Item* because = nullptr;              // the same for the failure of another one
    bool isTold = false;

    bool IsOut() const { return failure || because != nullptr; }
    const engine::Item& TheItem() const { return file ? file->TheItem() : linkItem; }
  };

  bool HoldsFileOfSeveralNames() const;
  bool HoldsSameFile(FileWipe& file) const;
  bool IsFull() const;
  // Carries out one step for an item, and takes it out of the batch when that fails.
  template <typename Step>
  void Try(Item& item, const Step& step);
  // Tells what has failed since the last time, if anything. Doesn't look at the cancel flag.
  bool TellFailures();

  void RunSteps();
  void WritePass(const Pass& pass, bool isFirst);
  void FlushParts();
  void Verify();
  void CheckTransfers();
  // Removes the streams and the lengths.
  void Shorten();
  // Erases items from this one on, as many as the time allows: group_ is those.
  void Erase(std::size_t first);
  void HideLink(Item& link);
  void FlushEntries();
  void FlushPlaces(bool ofLinksAlone);

  Operation& operation_;
  const std::function<void()> makeRoom_;
  const std::size_t mostOpen_ = operation_.device.OpenAtOnce().files;
  std::vector<std::unique_ptr<Item>> items_;
  std::span<const std::unique_ptr<Item>> group_;  // of items_, those that are being taken out
  std::uint64_t bytes_ = 0;
  std::size_t parts_ = 0;
  std::uint64_t cachedBytes_ = 0;  // written, in one way or the other, since the last flush
  std::uint64_t directBytes_ = 0;
  bool hasRun_ = false;
};

}  // namespace zq::engine
