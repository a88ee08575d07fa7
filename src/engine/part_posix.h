// What transfers go to on Linux: an open file, or an extended attribute.
#pragma once

#include "engine/Device.h"

namespace zq::engine {

class PosixPart : public File {
 public:
  // The descriptor of the file that it is, or belongs to.
  virtual int Fd() const = 0;
  // Whether its reads and writes pass the system's cache, by that descriptor.
  virtual bool IsDirect() const = 0;
};

}  // namespace zq::engine
