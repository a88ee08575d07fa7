#include "manager/Measure.h"

#include <limits>
#include <vector>

#include "platform/Files.h"
#include "platform/Process.h"
#include "platform/Text.h"

namespace zq {

void MeasureEntry(const FileEntry& entry, Measured& measured) {
  if (entry.attributes & kAttributeDirectory) {
    ++measured.folders;
    return;
  }
  ++measured.files;
  const std::uint64_t length = std::uint64_t{entry.sizeHigh} << 32 | entry.sizeLow;
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  measured.bytes = length > kMost - measured.bytes ? kMost : measured.bytes + length;
}

// Without recursion: how deep folders go is not ours to choose.
void MeasureFolder(Files& files, Process& process, const std::string& path, Measured& measured) {
  std::vector<std::string> waiting{path};
  while (!waiting.empty()) {
    std::string folder = std::move(waiting.back());
    waiting.pop_back();
    if (!folder.ends_with('\\')) folder += '\\';
    const ListEnd end = files.List(folder + "*", [&](const FileEntry& entry) {
      process.LookAtMessages();
      const std::string name = TrimAtNull(entry.name);
      if (name == "." || name == "..") return;
      MeasureEntry(entry, measured);
      const bool isFolder = (entry.attributes & kAttributeDirectory) != 0;
      if (isFolder && !(entry.attributes & kAttributeReparsePoint)) waiting.push_back(folder + name);
    });
    if (end != ListEnd::Complete) measured.isComplete = false;
  }
}

}  // namespace zq
