#include "manager/KnownFolder_win32.h"

#include <shlobj.h>

#include <memory>

#include "platform/win32/Wide.h"

namespace zq {
namespace {

struct TaskMemory {
  void operator()(wchar_t* memory) const { ::CoTaskMemFree(memory); }
};

}  // namespace

std::string KnownFolder(const KNOWNFOLDERID& id) {
  wchar_t* path = nullptr;
  const HRESULT found = ::SHGetKnownFolderPath(id, KF_FLAG_DONT_VERIFY, nullptr, &path);
  const std::unique_ptr<wchar_t, TaskMemory> owned(path);
  return SUCCEEDED(found) && path ? FromWide(path) : std::string();
}

}  // namespace zq
