// What a drive is made of, as far as it matters to overwriting.
#pragma once

#include <string>

namespace zq::engine {

struct StorageInfo {
  enum class Kind {
    Unknown,   // has to be taken for flash
    Rotating,  // a hard disk, which writes where it is told to
    Flash,     // chooses the places by itself
    Memory,    // no device at all
  };
  Kind kind = Kind::Unknown;
  bool trims = false;  // it can be told which space is free
  std::string model;   // empty: not told
  std::string serial;

  bool ChoosesPlaces() const { return kind == Kind::Unknown || kind == Kind::Flash; }
};

// Whether a disk of this model is one that a virtual machine is shown: what it says of itself isn't what lies
// beneath.
bool IsMadeUp(const std::string& model);

}  // namespace zq::engine
