// mdlSize: the length of a file and the text that shows it.
#pragma once

#include <string>

#include "platform/FixedPoint.h"

namespace zq {

class Files;
class Regional;

// The length in bytes of the first entry that `path` names, wildcards included; 0 when there is none.
// Raises Overflow from 922337203685478 bytes on.
FixedPoint GetFileSize64(Files& files, const std::string& path);

// "1023 Bytes", "1.46 KB", "1024.00 MB", "5120.00 GB": the unit is chosen before rounding and not
// revised after it. What can't be shown as a number is "0 Bytes".
std::string FormatFileSize(double sizeBytes, Regional& regional);

}  // namespace zq
