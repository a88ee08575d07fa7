// Takes old names out of what file systems keep them in besides their folders: the journal of ext4, the log
// of xfs, and blocks of folders that have not been written to their place.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>

namespace zq::engine {

// Whether little of what programs have written waits for its way to the device. To synchronise a whole file
// system waits for all of it, and nobody can cancel meanwhile.
bool LittleIsUnwritten();

// Fills the log with other things, by way of files without a name in the file system of the folder `fd`,
// until it has come round. That also writes to its place what was in it. It takes no rights but those to make
// files, and about as long as writing as much as the log holds; `mayGoOn` is asked before each part. False if
// the log is too large for that, if it isn't to go on, or something has failed.
bool XfsFillLog(int fd, dev_t device, const std::function<bool()>& mayGoOn);

// The same for the journal of ext4, which doesn't tell how large it is, nor where it stands: as much is
// written as a file system of this size is usually given. False if that is too much, or something has failed.
bool Ext4FillJournal(int fd, const std::function<bool()>& mayGoOn);

}  // namespace zq::engine
