#include "controls/ScreenReaderName.h"

#include <commctrl.h>
#include <initguid.h>
#include <oleacc.h>

#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr UINT_PTR kSubclassId = 0x31;
constexpr DWORD kObject = static_cast<DWORD>(OBJID_CLIENT);

ComPointer<IAccPropServices> NameService() {
  void* service = nullptr;
  if (FAILED(::CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                                &service)))
    return {};
  return ComPointer<IAccPropServices>(static_cast<IAccPropServices*>(service));
}

// The system keeps the name under the window's number, which could be another window's later.
LRESULT CALLBACK ForgetWithTheWindow(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                     DWORD_PTR) {
  if (message == WM_DESTROY) {
    MSAAPROPID property = PROPID_ACC_NAME;
    const ComPointer<IAccPropServices> service = NameService();
    if (service) service->ClearHwndProps(hwnd, kObject, CHILDID_SELF, &property, 1);
    ::RemoveWindowSubclass(hwnd, &ForgetWithTheWindow, id);
  }
  return ::DefSubclassProc(hwnd, message, wParam, lParam);
}

}  // namespace

void NameForScreenReaders(HWND window, const std::string& name) {
  const ComPointer<IAccPropServices> service = NameService();
  if (!service) return;
  if (FAILED(service->SetHwndPropStr(window, kObject, CHILDID_SELF, PROPID_ACC_NAME, ToWide(name).c_str())))
    return;
  ::SetWindowSubclass(window, &ForgetWithTheWindow, kSubclassId, 0);
}

}  // namespace zq
