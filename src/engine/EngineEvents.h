// What a running operation of the engine tells its owner.
#pragma once

#include <cstdint>
#include <string>

namespace zq::engine {

enum class ItemKind { File, Folder, Link, Other };

// What is to be destroyed, or where the work is.
struct Item {
  std::string path;  // what the caller named, with the names that lead on from there
  std::string name;  // the last of them; the path again where the work is at no single entry
  ItemKind kind = ItemKind::Other;
};

enum class Outcome {
  Wiped,      // overwritten, found so by reading it back, and gone; a link, an emptied folder: gone
  Kept,       // still there, and not all of it known to be overwritten
  Destroyed,  // overwritten and found so, but the entry is still there, or may be after a loss of power
};

// What became of an item.
struct ItemEnd {
  Outcome outcome = Outcome::Kept;
  // The system's number, or kEngineErrorCode. 0: no failure of its own, but wiped, or kept because something
  // in it is.
  std::int32_t errorCode = 0;
  std::string reason = {};   // why it is still there, the path left out: "Opening: Access is denied (5)"
  std::string text = {};     // the same with the path, one line without double quotes
  std::string nameNow = {};  // what it is called, where that is not its own name any more
};

// The events arise on the caller's thread inside the running member. A handler may pump messages and may
// call SecureDelete::CancelOperation; it must not throw.
class EngineEvents {
 public:
  virtual ~EngineEvents() = default;

  // `bytesDone` of `bytesTotal` (the length of the file) are done, all passes and the read-back taken
  // together; lengths of 2 GiB and more are scaled down so that the share is right. Raised at the start
  // (0) and the end (the total) of each file, and some twenty times a second between. `bytesTotal` is 0
  // for an empty file, and where the work is at a folder or at entries: the item is then of the kind Other
  // and has a path alone.
  virtual void WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t percent,
                            const Item& item) = 0;

  // The end of an item: once for each file, link and folder that was to be destroyed and was come upon, after
  // its last progress. A cancel ends items without it: of a file that had its start, but no end, some may
  // be overwritten; the others are as they were.
  virtual void ItemEnded(const Item& item, const ItemEnd& end) = 0;

  // An operation has failed in what belongs to no single item. `errorCode` is the system's number, or
  // kEngineErrorCode; never 0. `errorText` is one line without double quotes. A cancel isn't an error.
  virtual void WipeError(std::int32_t errorCode, const std::string& errorText) = 0;

  // `percent` is the share of all the overwriting. 101 and more: the free space has grown meanwhile and
  // the new space is being taken in. `kbTotal` is the free space in KiB and doesn't change unless that
  // happens. Both amounts stop at the largest 32-bit number.
  virtual void FreeSpaceProgress(const std::string& itemName, std::int32_t percent, std::int32_t kbDone,
                                 std::int32_t kbTotal) = 0;
};

// The error code of what the engine itself refuses or finds wrong.
inline constexpr std::int32_t kEngineErrorCode = 1;

}  // namespace zq::engine
