// How many things of each kind the program has now, as their owners count them: for finding what is made and
// never given back. In builds with ZQ_COUNTERS alone, which debug builds are; in others the calls are empty,
// and there is nothing to be asked.
#pragma once

#include <cstddef>
#ifdef ZQ_COUNTERS
#include <string>
#include <vector>
#endif

namespace zq::debug {

enum class Kind {
  File,
  Search,
  KernelHandle,
  RegistryKey,
  Icon,
  Menu,
  AcceleratorTable,
  DeviceContext,
  WindowContext,
  Bitmap,
  Brush,
  Font,
  ImageList,
  Theme,
  GlobalMemory,
  TransferBuffer,
  HeldReference,    // held by us on a COM object
  ObjectReference,  // held by anybody on a COM object of ours
  Object,           // such a COM object
  Form,
  Control,
  HeapBlock,  // of new and delete
  HeapByte,
  Count
};

#ifdef ZQ_COUNTERS

// Adds to what there is of a kind. From any thread.
void Count(Kind kind, std::ptrdiff_t change) noexcept;

struct Reading {
  const char* name;
  std::ptrdiff_t live;
};
// Each kind in its order, all of them read before anything is allocated for the answer.
std::vector<Reading> LiveCounts();

// One line for each reading, "name: count", the counts of one width: the text is as long whenever it is asked
// for.
std::string InLines(const std::vector<Reading>& readings);

#else

constexpr void Count(Kind, std::ptrdiff_t) noexcept {
}

#endif

// A member that counts its owner.
template <Kind kind>
class Alive {
 public:
  Alive() noexcept { Count(kind, 1); }
  Alive(const Alive&) noexcept { Count(kind, 1); }
  Alive& operator=(const Alive&) noexcept { return *this; }
  ~Alive() { Count(kind, -1); }
};

}  // namespace zq::debug
