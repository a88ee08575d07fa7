#include "controls/DropTarget.h"

#include <commctrl.h>
#include <ole2.h>
#include <shellapi.h>
#include <shlobj.h>

#include <deque>
#include <exception>
#include <utility>

#include "platform/win32/ComObject.h"
#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {
namespace {

// Posted to the window when paths wait in its target.
constexpr UINT kDroppedMessage = WM_APP + 0x30;
constexpr UINT_PTR kSubclassId = 0x30;

FORMATETC FileListFormat() {
  return {CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
}

// The shell's drawer of what is dragged; null where it has none, and the pointer alone moves then.
ComPointer<IDropTargetHelper> DragPicture() {
  void* helper = nullptr;
  if (FAILED(::CoCreateInstance(CLSID_DragDropHelper, nullptr, CLSCTX_INPROC_SERVER, IID_IDropTargetHelper,
                                &helper)))
    return {};
  return ComPointer<IDropTargetHelper>(static_cast<IDropTargetHelper*>(helper));
}

POINT PointOf(POINTL point) {
  return {point.x, point.y};
}

}  // namespace

bool ReadFileList(IDataObject& data, DroppedPaths& paths) {
  FORMATETC format = FileListFormat();
  STGMEDIUM medium{};
  if (FAILED(data.GetData(&format, &medium))) return false;
  if (medium.tymed == TYMED_HGLOBAL) paths = PathsInMemory(medium.hGlobal);
  ::ReleaseStgMedium(&medium);
  return true;
}

class DropTarget::Target final : public ComObject<IDropTarget> {
 public:
  Target(DropTarget& owner, HWND hwnd, std::function<void(const DroppedPaths&)> dropped, When when)
      : owner_(&owner), hwnd_(hwnd), dropped_(std::move(dropped)), when_(when), picture_(DragPicture()) {
    ::SetWindowSubclass(hwnd_, &Target::Receive, kSubclassId, reinterpret_cast<DWORD_PTR>(this));
  }
  ~Target() override { ::RemoveWindowSubclass(hwnd_, &Target::Receive, kSubclassId); }

  HRESULT STDMETHODCALLTYPE DragEnter(IDataObject* data, DWORD, POINTL point, DWORD* effect) override {
    FORMATETC format = FileListFormat();
    // A window behind a modal one is disabled, and takes nothing.
    accepts_ = owner_ && owner_->accepting_ && SUCCEEDED(data->QueryGetData(&format)) &&
               ::IsWindowEnabled(::GetAncestor(hwnd_, GA_ROOT));
    Answer(effect);
    TellHover(accepts_);
    POINT place = PointOf(point);
    if (picture_) picture_->DragEnter(hwnd_, data, &place, *effect);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE DragOver(DWORD, POINTL point, DWORD* effect) override {
    Answer(effect);
    POINT place = PointOf(point);
    if (picture_) picture_->DragOver(&place, *effect);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE DragLeave() override {
    TellHover(false);
    if (picture_) picture_->DragLeave();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD, POINTL point, DWORD* effect) override {
    Answer(effect);
    TellHover(false);
    POINT place = PointOf(point);
    // Before the paths are taken: the picture would stay for as long as that lasts.
    if (picture_) picture_->Drop(data, &place, *effect);
    try {
      DroppedPaths paths;
      if (accepts_ && ReadFileList(*data, paths)) Take(std::move(paths));
    } catch (...) {
      ReportAndEnd(std::current_exception());
    }
    return S_OK;
  }

  // The owner goes; the system may hold on to this a little longer.
  void Leave() { owner_ = nullptr; }

 private:
  void Take(DroppedPaths paths) {
    if (when_ == When::Inside) {
      dropped_(paths);
    } else {
      waiting_.push_back(std::move(paths));
      ::PostMessageW(hwnd_, kDroppedMessage, 0, 0);
    }
  }

  void TellHover(bool over) {
    if (over == hovering_) return;
    hovering_ = over;
    if (owner_ && owner_->Hover) owner_->Hover(over);
  }

  // The paths are copied out; the files stay where they are. Move is never answered: the source would
  // delete them.
  void Answer(DWORD* effect) const {
    *effect = accepts_ ? (*effect & DROPEFFECT_COPY ? DROPEFFECT_COPY : *effect & DROPEFFECT_LINK)
                       : DROPEFFECT_NONE;
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

  DropTarget* owner_;
  HWND hwnd_;
  std::function<void(const DroppedPaths&)> dropped_;
  When when_;
  std::deque<DroppedPaths> waiting_;
  bool accepts_ = false;
  bool hovering_ = false;
  ComPointer<IDropTargetHelper> picture_;
};

DropTarget::DropTarget() = default;

DropTarget::~DropTarget() {
  Revoke();
}

void DropTarget::Register(HWND hwnd, std::function<void(const DroppedPaths&)> dropped, When when) {
  hwnd_ = hwnd;
  target_.reset(new Target(*this, hwnd, std::move(dropped), when));
  ::RegisterDragDrop(hwnd, target_.get());
}

void DropTarget::Revoke() {
  if (!target_) return;
  ::RevokeDragDrop(hwnd_);
  target_->Leave();
  target_.reset();
}

}  // namespace zq
