#include "manager/ShellVerb_win32.h"

#include <ole2.h>
#include <shlobj.h>

#include <exception>
#include <memory>
#include <utility>

#include "controls/DropTarget.h"
#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr const wchar_t* kClassKey = L"Software\\Classes\\CLSID\\{8F0C6B1E-5D3A-4C47-9B4E-2A7D51E0C9F3}";
constexpr const wchar_t* kVerbKey = L"Software\\Classes\\AllFilesystemObjects\\shell\\Zeroquill.Wipe";
constexpr const wchar_t* kClassId = L"{8F0C6B1E-5D3A-4C47-9B4E-2A7D51E0C9F3}";
constexpr const wchar_t* kCaption = L"Wipe with Zeroquill";
// Others may have theirs beneath these: they go only if nothing is left in them.
constexpr const wchar_t* kSharedKeys[] = {L"Software\\Classes\\AllFilesystemObjects\\shell",
                                          L"Software\\Classes\\AllFilesystemObjects"};

template <class Interface>
class Counted : public Interface {
 public:
  virtual ~Counted() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (id != IID_IUnknown && id != __uuidof(Interface)) {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    *object = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  ULONG references_ = 1;  // all calls come on the one thread
};

// Takes one selection. It has no window: nothing hovers, and the place means nothing.
class Selected final : public Counted<IDropTarget> {
 public:
  explicit Selected(const ShellVerb::Taken& taken) : taken_(taken) {}

  HRESULT STDMETHODCALLTYPE DragEnter(IDataObject*, DWORD, POINTL, DWORD* effect) override {
    return Answer(effect);
  }
  HRESULT STDMETHODCALLTYPE DragOver(DWORD, POINTL, DWORD* effect) override { return Answer(effect); }
  HRESULT STDMETHODCALLTYPE DragLeave() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD, POINTL, DWORD* effect) override {
    Answer(effect);
    try {
      DroppedPaths paths;
      if (!data || !ReadFileList(*data, paths)) return E_INVALIDARG;
      taken_(std::move(paths));
    } catch (...) {
      ReportAndEnd(std::current_exception());
    }
    return S_OK;
  }

 private:
  // Never a move: the source would delete the files.
  static HRESULT Answer(DWORD* effect) {
    *effect &= *effect & DROPEFFECT_COPY ? DROPEFFECT_COPY : DROPEFFECT_LINK;
    return S_OK;
  }

  ShellVerb::Taken taken_;
};

class Factory final : public Counted<IClassFactory> {
 public:
  explicit Factory(ShellVerb::Taken taken) : taken_(std::move(taken)) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
    *object = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    const ComPointer<Selected> selected(new Selected(taken_));
    return selected->QueryInterface(id, object);
  }
  // The companion lives until it is closed, whoever holds it or doesn't.
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  ShellVerb::Taken taken_;
};

// Keys that no disk keeps: after a crash they are gone with the session.
bool WriteText(const std::wstring& key, const wchar_t* name, const std::wstring& text) {
  HKEY opened = nullptr;
  if (::RegCreateKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_SET_VALUE,
                        nullptr, &opened, nullptr) != ERROR_SUCCESS)
    return false;
  const UniqueRegistryKey owned(opened);
  return ::RegSetValueExW(opened, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                          static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

bool WriteKeys(const std::wstring& program) {
  const std::wstring classKey = kClassKey;
  const std::wstring verbKey = kVerbKey;
  const std::wstring server = classKey + L"\\LocalServer32";
  // COM puts its own argument behind the path.
  return WriteText(classKey, nullptr, kCaption) && WriteText(server, nullptr, L'"' + program + L'"') &&
         WriteText(server, L"ServerExecutable", program) && WriteText(verbKey, nullptr, kCaption) &&
         WriteText(verbKey, L"Icon", L'"' + program + L'"') &&
         // For selections of any size.
         WriteText(verbKey, L"MultiSelectModel", L"Player") &&
         WriteText(verbKey + L"\\DropTarget", L"CLSID", kClassId);
}

bool IsEmpty(const wchar_t* key) {
  HKEY opened = nullptr;
  if (::RegOpenKeyExW(HKEY_CURRENT_USER, key, 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS) return false;
  const UniqueRegistryKey owned(opened);
  DWORD keys = 0;
  DWORD values = 0;
  return ::RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                            nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
         keys == 0 && values == 0;
}

void RemoveKeys() {
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kVerbKey);
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kClassKey);
  for (const wchar_t* key : kSharedKeys) {
    if (IsEmpty(key)) ::RegDeleteKeyW(HKEY_CURRENT_USER, key);
  }
}

void TellShell() {
  ::SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr);
}

}  // namespace

void ShellVerb::Start(const std::string& programPath, Taken taken) {
  Stop();
  RemoveKeys();  // of one that crashed
  const ComPointer<Factory> factory(new Factory(std::move(taken)));
  if (FAILED(::CoRegisterClassObject(kWipeVerbClass, factory.get(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE,
                                     &registered_))) {
    registered_ = 0;
    return;
  }
  keysWritten_ = true;
  if (WriteKeys(ToWide(programPath))) return TellShell();
  Stop();
}

void ShellVerb::Stop() {
  // First what leads here, then what serves it.
  if (keysWritten_) {
    RemoveKeys();
    TellShell();
    keysWritten_ = false;
  }
  if (registered_ != 0) ::CoRevokeClassObject(registered_);
  registered_ = 0;
}

}  // namespace zq
