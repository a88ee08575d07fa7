#include "controls/DroppedPaths.h"

#include "controls/DropFiles.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// A path in the system's code page.
std::string FromNarrow(const std::string& path) {
  std::wstring wide(path.size(), L'\0');  // no character has more units than bytes
  wide.resize(static_cast<std::size_t>(::MultiByteToWideChar(
      CP_ACP, 0, path.data(), static_cast<int>(path.size()), wide.data(), static_cast<int>(wide.size()))));
  return FromWide(wide);
}

}  // namespace

DroppedPaths PathsInMemory(HGLOBAL memory) {
  const SIZE_T size = ::GlobalSize(memory);
  if (size == 0) return {};
  const void* bytes = ::GlobalLock(memory);
  if (!bytes) return {};
  const DropList list = ReadDropFiles({static_cast<const char*>(bytes), size});
  ::GlobalUnlock(memory);
  DroppedPaths paths;
  for (const std::u16string& path : list.wide)
    paths.push_back(FromWide(std::wstring(path.begin(), path.end())));
  for (const std::string& path : list.narrow) paths.push_back(FromNarrow(path));
  return paths;
}

}  // namespace zq
