#include "controls/DropTarget.h"

#include <commctrl.h>
#include <ole2.h>
#include <shellapi.h>

#include <deque>
#include <exception>

#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

// Posted to the window when paths wait in its target.
constexpr UINT kDroppedMessage = WM_APP + 0x30;
constexpr UINT_PTR kSubclassId = 0x30;

FORMATETC FileListFormat() {
  return {CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
}

// The file list of a data object; false where it has none.
bool ReadFileList(IDataObject& data, DroppedPaths& paths) {
  FORMATETC format = FileListFormat();
  STGMEDIUM medium{};
  if (FAILED(data.GetData(&format, &medium))) return false;
  const auto drop = static_cast<HDROP>(medium.hGlobal);
  const UINT count = ::DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
  for (UINT i = 0; i < count; ++i) {
    std::wstring path(::DragQueryFileW(drop, i, nullptr, 0), L'\0');
    ::DragQueryFileW(drop, i, path.data(), static_cast<UINT>(path.size() + 1));
    paths.push_back(FromWide(path));
  }
  ::ReleaseStgMedium(&medium);
  return true;
}

}  // namespace

class DropTarget::Target final : public IDropTarget {
 public:
  Target(HWND hwnd, std::function<void(const DroppedPaths&)> dropped)
      : hwnd_(hwnd), dropped_(std::move(dropped)) {
    ::SetWindowSubclass(hwnd_, &Target::Receive, kSubclassId, reinterpret_cast<DWORD_PTR>(this));
  }
  ~Target() { ::RemoveWindowSubclass(hwnd_, &Target::Receive, kSubclassId); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (id == IID_IUnknown || id == IID_IDropTarget) {
      *object = this;
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE DragEnter(IDataObject* data, DWORD, POINTL, DWORD* effect) override {
    FORMATETC format = FileListFormat();
    // A window behind a modal one is disabled, and takes nothing.
    accepts_ = SUCCEEDED(data->QueryGetData(&format)) && ::IsWindowEnabled(::GetAncestor(hwnd_, GA_ROOT));
    return Answer(effect);
  }
  HRESULT STDMETHODCALLTYPE DragOver(DWORD, POINTL, DWORD* effect) override { return Answer(effect); }
  HRESULT STDMETHODCALLTYPE DragLeave() override { return S_OK; }

  HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD, POINTL, DWORD* effect) override {
    try {
      DroppedPaths paths;
      if (accepts_ && ReadFileList(*data, paths)) {
        waiting_.push_back(std::move(paths));
        ::PostMessageW(hwnd_, kDroppedMessage, 0, 0);
      }
    } catch (...) {
      ReportAndEnd(std::current_exception());
    }
    return Answer(effect);
  }

 private:
  // The paths are copied out; the files stay where they are. Move is never answered: the source would
  // delete them.
  HRESULT Answer(DWORD* effect) const {
    *effect = accepts_ ? (*effect & DROPEFFECT_COPY ? DROPEFFECT_COPY : *effect & DROPEFFECT_LINK)
                       : DROPEFFECT_NONE;
    return S_OK;
  }

  static LRESULT CALLBACK Receive(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                  DWORD_PTR self) {
    if (message != kDroppedMessage) return ::DefSubclassProc(hwnd, message, wParam, lParam);
    auto* target = reinterpret_cast<Target*>(self);
    try {
      while (!target->waiting_.empty()) {
        const DroppedPaths paths = std::move(target->waiting_.front());
        target->waiting_.pop_front();
        target->dropped_(paths);
      }
    } catch (...) {
      ReportAndEnd(std::current_exception());
    }
    return 0;
  }

  HWND hwnd_;
  std::function<void(const DroppedPaths&)> dropped_;
  ULONG references_ = 1;
  std::deque<DroppedPaths> waiting_;
  bool accepts_ = false;
};

void DropTarget::Register(HWND hwnd, std::function<void(const DroppedPaths&)> dropped) {
  hwnd_ = hwnd;
  target_ = new Target(hwnd, std::move(dropped));
  ::RegisterDragDrop(hwnd, target_);
}

void DropTarget::Revoke() {
  if (!target_) return;
  ::RevokeDragDrop(hwnd_);
  target_->Release();
  target_ = nullptr;
}

}  // namespace zq
