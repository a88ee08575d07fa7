// FillerRecord: on which drives a wipe of free space has begun that hasn't come to its end, so that the next
// start of the program can remove what a killed one has left there.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/state/DataFolder.h"

namespace zq {

class Drives;

// The roots of the drives, such as "D:\", one behind the other and no line breaks between. There only while
// there is something to remember.
inline constexpr const char* kFillerRecordFile = "FreeSpace.dat";

// No member raises: a record that can't be kept is no reason for a wipe not to begin, since the next one of
// that drive removes what is left as well.
class FillerRecord {
 public:
  explicit FillerRecord(const DataFolder& folder) : folder_(folder) {}

  // In the order in which they were added. Nothing of a file that we didn't write.
  std::vector<std::string> Drives() const;
  void Add(const std::string& drive) const;
  void Drop(const std::string& drive) const;

 private:
  void Write(const std::vector<std::string>& drives) const;

  DataFolder folder_;
};

// For the program's start: has `remove` look through each drive of the record that is there and of a kind
// that answers at once; a drive with which it is done, told by true, leaves the record.
void RemoveLeftFillers(const FillerRecord& record, Drives& drives,
                       const std::function<bool(const std::string& drive)>& remove);

}  // namespace zq
