#include "manager/UserShell_win32.h"

#include <windows.h>
#include <ole2.h>
#include <shlobj.h>

#include <memory>

#include "manager/KnownFolder_win32.h"
#include "platform/win32/LongPath.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// With all keys above it; empty if the system refuses.
UniqueRegistryKey Made(const std::string& key, DWORD options) {
  HKEY made = nullptr;
  if (::RegCreateKeyExW(HKEY_CURRENT_USER, ToWide(key).c_str(), 0, nullptr, options, KEY_SET_VALUE, nullptr,
                        &made, nullptr) != ERROR_SUCCESS)
    return {};
  return UniqueRegistryKey(made);
}

// Where the entry of this name lies; empty on a system without such a folder.
std::string SendToPath(const std::string& name) {
  const std::string folder = KnownFolder(FOLDERID_SendTo);
  return folder.empty() ? folder : folder + "\\" + name + ".lnk";
}

// A new, empty shortcut, and the way to its file; null if the system refuses.
struct Shortcut {
  Shortcut() {
    void* object = nullptr;
    if (FAILED(::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &object)))
      return;
    link.reset(static_cast<IShellLinkW*>(object));
    if (SUCCEEDED(link->QueryInterface(IID_IPersistFile, &object)))
      file.reset(static_cast<IPersistFile*>(object));
  }

  ComPointer<IShellLinkW> link;
  ComPointer<IPersistFile> file;
};

}  // namespace

bool Win32UserShell::IsElevated() {
  HANDLE opened = nullptr;
  if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &opened)) return true;
  const UniqueKernelHandle token(opened);
  TOKEN_ELEVATION elevation{};
  DWORD size = 0;
  if (!::GetTokenInformation(token.Get(), TokenElevation, &elevation, sizeof elevation, &size)) return true;
  return elevation.TokenIsElevated != 0;
}

bool Win32UserShell::MakeKey(const std::string& key) {
  return static_cast<bool>(Made(key, REG_OPTION_NON_VOLATILE));
}

bool Win32UserShell::WriteText(const std::string& key, const std::string& valueName,
                               const std::string& text) {
  const UniqueRegistryKey made = Made(key, REG_OPTION_VOLATILE);
  if (!made) return false;
  const std::wstring wide = ToWide(text);
  return ::RegSetValueExW(made.Get(), ToWide(valueName).c_str(), 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(wide.c_str()),
                          static_cast<DWORD>((wide.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

bool Win32UserShell::RemoveKey(const std::string& key) {
  return ::RegDeleteTreeW(HKEY_CURRENT_USER, ToWide(key).c_str()) == ERROR_SUCCESS;
}

void Win32UserShell::RemoveKeyIfEmpty(const std::string& key) {
  const std::wstring wide = ToWide(key);
  HKEY opened = nullptr;
  if (::RegOpenKeyExW(HKEY_CURRENT_USER, wide.c_str(), 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS) return;
  const UniqueRegistryKey owned(opened);
  DWORD keys = 0;
  DWORD values = 0;
  if (::RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                         nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
      keys == 0 && values == 0)
    ::RegDeleteKeyW(HKEY_CURRENT_USER, wide.c_str());
}

bool Win32UserShell::AddSendTo(const std::string& name, const std::string& program) {
  const std::string path = SendToPath(name);
  const Shortcut shortcut;
  if (path.empty() || !shortcut.file) return false;
  if (FAILED(shortcut.link->SetPath(ToWide(program).c_str()))) return false;
  if (SUCCEEDED(shortcut.file->Save(ToWide(path).c_str(), FALSE))) return true;
  // There was none before: what is there now is a part of ours.
  RemoveSendTo(name);
  return false;
}

std::optional<std::string> Win32UserShell::SendToProgram(const std::string& name) {
  const std::string path = SendToPath(name);
  if (path.empty() || ::GetFileAttributesW(SystemPath(path).c_str()) == INVALID_FILE_ATTRIBUTES)
    return std::nullopt;
  const Shortcut shortcut;
  wchar_t program[MAX_PATH] = L"";
  if (!shortcut.file || FAILED(shortcut.file->Load(ToWide(path).c_str(), STGM_READ)) ||
      shortcut.link->GetPath(program, MAX_PATH, nullptr, SLGP_RAWPATH) != S_OK)
    return std::string();
  return FromWide(program);
}

void Win32UserShell::RemoveSendTo(const std::string& name) {
  ::DeleteFileW(SystemPath(SendToPath(name)).c_str());
}

void Win32UserShell::TellChange() {
  ::SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr);
}

}  // namespace zq
