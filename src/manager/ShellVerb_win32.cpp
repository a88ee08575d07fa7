#include "manager/ShellVerb_win32.h"

#include <ole2.h>

#include <exception>
#include <memory>
#include <utility>

#include "controls/DropTarget.h"
#include "platform/win32/ComObject.h"
#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {
namespace {

// Takes one selection. It has no window: nothing hovers, and the place means nothing.
class Selected final : public ComObject<IDropTarget> {
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

class Factory final : public ComObject<IClassFactory> {
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

}  // namespace

bool ShellVerb::Serve(Taken taken) {
  Stop();
  const ComPointer<Factory> factory(new Factory(std::move(taken)));
  if (SUCCEEDED(::CoRegisterClassObject(kWipeVerbClass, factory.get(), CLSCTX_LOCAL_SERVER,
                                        REGCLS_MULTIPLEUSE, &registered_)))
    return true;
  registered_ = 0;
  return false;
}

void ShellVerb::Stop() {
  if (registered_ != 0) ::CoRevokeClassObject(registered_);
  registered_ = 0;
}

}  // namespace zq
