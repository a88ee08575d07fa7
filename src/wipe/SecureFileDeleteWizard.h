// SecureFileDeleteWizard: the engine's interface as the program sees it: six members and their events.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace zq {

// Raised on the same thread, inside the running member. A handler may pump window messages and call
// CancelOperation. Each owner of an engine handles the events it needs: the drop wipe only follows the
// progress, and FreeSpaceProgress comes to an owner that calls WipeFreeSpace.
class WipeEvents {
 public:
  virtual ~WipeEvents() = default;
  virtual void SFD1_WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t unused,
                                 const std::string& itemName) = 0;
  // The work is at a folder or at entries: nothing of a file is done, and no figure is new.
  virtual void SFD1_WorkElsewhere(const std::string& itemName) = 0;
  virtual void SFD1_WipeError(std::int32_t /*errorCode*/, const std::string& /*errorText*/) {}
  virtual void SFD1_ItemWiped(const std::string& /*itemName*/) {}
  virtual void SFD1_FreeSpaceProgress(const std::string& /*itemName*/, std::int32_t /*percent*/,
                                      std::int32_t /*kbDone*/, std::int32_t /*kbTotal*/) {}
};

// `level` is the security level 3, 5 or 7: three data writes per byte per level. A member runs to its end
// before it returns and never raises into its caller.
class SecureFileDeleteWizard {
 public:
  virtual ~SecureFileDeleteWizard() = default;

  // True: the file is overwritten and gone.
  virtual bool WipeFile(const std::string& path, std::int32_t level) = 0;

  // Wipes all in the folder and below, and removes the folders and the folder itself.
  virtual bool WipeFolder(const std::string& path, std::int32_t level) = 0;

  // Wipes the files whose names match `mask`; the folders stay. "*.*" is every file.
  virtual bool WipeFolderFiles(const std::string& path, const std::string& mask, bool includeSubFolders,
                               std::int32_t level) = 0;

  // `drive` is three characters such as "C:\". A failure is told by SFD1_WipeError alone.
  virtual bool WipeFreeSpace(const std::string& drive, std::int32_t level) = 0;

  // The text of the latest failure: one line, free of double quotes.
  virtual std::string GetLastErrorText() = 0;

  // Asks the running member to stop. Harmless when none runs.
  virtual void CancelOperation() = 0;
};

// What an engine can do better for several calls than for each: between the two they are one operation, whose
// traces are seen to at its end. Each BeginWhole has its EndWhole, which never raises; it is false where
// something of what the calls have told may not be so after a loss of power, or in a log, as GetLastErrorText
// then tells.
class WholeWipes {
 public:
  virtual ~WholeWipes() = default;
  virtual void BeginWhole() = 0;
  virtual bool EndWhole() noexcept = 0;
};

// One whole of what is called in its life, however that ends. Without an engine that knows of it, nothing.
class OneWhole {
 public:
  explicit OneWhole(WholeWipes* wipes) : wipes_(wipes) {
    if (wipes_) wipes_->BeginWhole();
  }
  OneWhole(const OneWhole&) = delete;
  OneWhole& operator=(const OneWhole&) = delete;
  ~OneWhole() { End(); }

  // False as EndWhole is; true, too, where it has ended already.
  bool End() {
    WholeWipes* const wipes = std::exchange(wipes_, nullptr);
    return wipes == nullptr || wipes->EndWhole();
  }

 private:
  WholeWipes* wipes_;
};

}  // namespace zq
