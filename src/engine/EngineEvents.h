// What a running operation of the engine tells its owner.
#pragma once

#include <cstdint>
#include <string>

namespace zq::engine {

// The events arise on the caller's thread inside the running member. A handler may pump messages and may
// call SecureDelete::CancelOperation; it must not throw.
class EngineEvents {
 public:
  virtual ~EngineEvents() = default;

  // `bytesDone` of `bytesTotal` (the length of the file) are done, all passes and the read-back taken
  // together; lengths of 2 GiB and more are scaled down so that the share is right. Raised at the start
  // (0) and the end (the total) of each file, and some twenty times a second between. `bytesTotal` is 0
  // for an empty file, and where the work is at a folder or at entries, which are then told by the path.
  virtual void WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t percent,
                            const std::string& itemName) = 0;

  // An operation, or one item of it, has failed. `errorCode` is the system's number, or
  // kEngineErrorCode; never 0. `errorText` is one line without double quotes. A cancel isn't an error.
  virtual void WipeError(std::int32_t errorCode, const std::string& errorText) = 0;

  // One file has been wiped and is gone. Not raised for a file that failed, nor for a link.
  virtual void ItemWiped(const std::string& itemName) = 0;

  // `percent` is the share of all the overwriting. 101 and more: the free space has grown meanwhile and
  // the new space is being taken in. `kbTotal` is the free space in KiB and doesn't change unless that
  // happens. Both amounts stop at the largest 32-bit number.
  virtual void FreeSpaceProgress(const std::string& itemName, std::int32_t percent, std::int32_t kbDone,
                                 std::int32_t kbTotal) = 0;
};

// The error code of what the engine itself refuses or finds wrong.
inline constexpr std::int32_t kEngineErrorCode = 1;

}  // namespace zq::engine
