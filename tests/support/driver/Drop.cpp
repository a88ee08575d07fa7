#include "support/driver/Drop.h"

#include <windows.h>
#include <ole2.h>
#include <shlobj.h>

#include <atomic>
#include <cstring>
#include <exception>
#include <thread>
#include <utility>

#include "support/driver/Text.h"

namespace zq::test {
namespace {

// OLE for as long as this lives.
class Ole {
 public:
  Ole() {
    if (FAILED(::OleInitialize(nullptr))) throw DriverError("no OLE");
  }
  ~Ole() { ::OleUninitialize(); }
  Ole(const Ole&) = delete;
  Ole& operator=(const Ole&) = delete;
};

// Counts references; the objects here live on the stack of the drag and outlive all of them.
template <typename Interface>
class OnStack : public Interface {
 public:
  virtual ~OnStack() = default;
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references_); }
  ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references_); }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (!::IsEqualIID(id, IID_IUnknown) && !::IsEqualIID(id, __uuidof(Interface))) {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    *object = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }

 private:
  std::atomic<LONG> references_{1};
};

class FileData final : public OnStack<IDataObject> {
 public:
  explicit FileData(std::vector<char> bytes) : bytes_(std::move(bytes)) {}

  HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) override {
    if (QueryGetData(format) != S_OK || bytes_.empty()) return DV_E_FORMATETC;
    HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, bytes_.size());
    std::memcpy(::GlobalLock(memory), bytes_.data(), bytes_.size());
    ::GlobalUnlock(memory);
    medium->tymed = TYMED_HGLOBAL;
    medium->hGlobal = memory;
    medium->pUnkForRelease = nullptr;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC* format) override {
    return format->cfFormat == CF_HDROP && (format->tymed & TYMED_HGLOBAL) != 0 ? S_OK : DV_E_FORMATETC;
  }
  HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD direction, IEnumFORMATETC** formats) override {
    if (direction != DATADIR_GET) return E_NOTIMPL;
    FORMATETC format{CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
    return ::SHCreateStdEnumFmtEtc(1, &format, formats);
  }
  HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) override { return DV_E_FORMATETC; }
  HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC* out) override {
    out->ptd = nullptr;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override {
    return OLE_E_ADVISENOTSUPPORTED;
  }
  HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) override { return OLE_E_ADVISENOTSUPPORTED; }
  HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA**) override { return OLE_E_ADVISENOTSUPPORTED; }

 private:
  std::vector<char> bytes_;
};

// What the drag has come to, as its source is told; read by the thread that moves the mouse.
class Source final : public OnStack<IDropSource> {
 public:
  HRESULT STDMETHODCALLTYPE QueryContinueDrag(BOOL escape, DWORD keys) override {
    ++asked;
    if (escape || giveUp) return DRAGDROP_S_CANCEL;
    return (keys & MK_LBUTTON) == 0 ? DRAGDROP_S_DROP : S_OK;
  }
  HRESULT STDMETHODCALLTYPE GiveFeedback(DWORD newEffect) override {
    effect = newEffect;
    return DRAGDROP_S_USEDEFAULTCURSORS;
  }

  std::atomic<int> asked{0};
  std::atomic<DWORD> effect{DROPEFFECT_NONE};
  std::atomic<bool> giveUp{false};
};

// Carries the dragged files to the point and lets go, as told by what the source hears.
void Carry(POINT from, POINT to, Source& source) {
  Await("the drag to begin", [&] { return source.asked > 0; });
  constexpr int kSteps = 6;
  for (int step = 1; step <= kSteps; ++step) {
    const int before = source.asked;
    StepMouseTo({from.x + (to.x - from.x) * step / kSteps, from.y + (to.y - from.y) * step / kSteps});
    Await("the drag to go on", [&] { return source.asked > before; });
  }
  // The target's answer at the place; one that takes nothing stays at none. The pointer trembles meanwhile,
  // since an answer is asked for at a move alone. The screen reports moves late, and one of the way may come
  // after all of them: so the same answer is waited for several times, or the files would fall beside the
  // target.
  constexpr int kSame = 8;
  int same = 0;
  int tremble = 0;
  const auto place = [&] { return POINT{to.x + (tremble & 1), to.y}; };
  WaitFor(
      [&] {
        const int before = source.asked;
        ++tremble;
        StepMouseTo(place());
        Await("the drag to go on", [&] { return source.asked > before; });
        same = source.effect == DROPEFFECT_NONE ? 0 : same + 1;
        return same == kSame;
      },
      Limit(4000));
  StepMouseTo(place(), MOUSEEVENTF_LEFTUP);
}

// Whether a topmost window that can be seen lies there, anybody's.
bool HoldsTopmost(const RECT& place) {
  return !TopLevelWindows([&](Window window) {
            RECT covered{};
            RECT common{};
            return window.IsVisible() && ::IsIconic(window.Handle()) == 0 && window.IsTopmost() &&
                   ::GetWindowRect(window.Handle(), &covered) != 0 &&
                   ::IntersectRect(&common, &covered, &place) != 0;
          }).empty();
}

constexpr int kDragSide = 60;  // of the window that a drag begins in

// A corner of the screen for a drag to the target to begin in, with no topmost window in it. What is put over
// another window isn't above it for good: whoever is told late by the X server that the pointer was over its
// window has it lifted again, though never above a topmost one unless it is one itself. The press would be
// for that window.
RECT FreeCorner(POINT target) {
  const int right = ::GetSystemMetrics(SM_CXSCREEN) - kDragSide;
  const int bottom = ::GetSystemMetrics(SM_CYSCREEN) - kDragSide;
  for (const POINT at : {POINT{0, 0}, POINT{right, 0}, POINT{0, bottom}, POINT{right, bottom}}) {
    const RECT corner{at.x, at.y, at.x + kDragSide, at.y + kDragSide};
    RECT around = corner;
    constexpr int kApart = 40;  // far more than a drag trembles at its target
    ::InflateRect(&around, kApart, kApart);
    if (::PtInRect(&around, target) == 0 && !HoldsTopmost(corner)) return corner;
  }
  throw DriverError("a topmost window lies in each corner of the screen, so that no drag can begin");
}

// The window that a drag begins in: small, in front of all others. It wants no front place for a press: the
// system eats a press on a window that it can't activate at that moment. Its class knows no double clicks, so
// that each press is one.
class DragWindow {
 public:
  explicit DragWindow(POINT target) {
    const RECT corner = FreeCorner(target);
    middle_ = {corner.left + kDragSide / 2, corner.top + kDragSide / 2};
    WNDCLASSW wanted{};
    wanted.lpfnWndProc = Answer;
    wanted.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    wanted.lpszClassName = kClass;
    ::RegisterClassW(&wanted);  // fails after the first time, which is as good
    handle_ =
        ::CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, kClass, L"drag source", WS_POPUP | WS_VISIBLE,
                          corner.left, corner.top, kDragSide, kDragSide, nullptr, nullptr, nullptr, nullptr);
    if (handle_ == nullptr) throw DriverError("no window to drag from");
  }
  ~DragWindow() { ::DestroyWindow(handle_); }
  DragWindow(const DragWindow&) = delete;
  DragWindow& operator=(const DragWindow&) = delete;

  [[nodiscard]] POINT Middle() const { return middle_; }

  // Presses the left button on it; raises if that doesn't reach it.
  void Press() {
    MoveMouseTo(middle_);
    StepMouseTo(middle_, MOUSEEVENTF_LEFTDOWN);
    const bool down = WaitFor([&] {
      MSG message;
      while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        if (message.message == WM_LBUTTONDOWN && message.hwnd == handle_) return true;
        ::DispatchMessageW(&message);
      }
      return false;
    });
    if (down) return;
    const std::string instead = WhatIsThere();
    StepMouseTo(middle_, MOUSEEVENTF_LEFTUP);
    throw DriverError("the mouse does not reach the window to drag from; " + instead);
  }

 private:
  static constexpr const wchar_t* kClass = L"ZqDragSource";

  static LRESULT CALLBACK Answer(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_MOUSEACTIVATE) return MA_NOACTIVATE;
    return ::DefWindowProcW(window, message, wparam, lparam);
  }

  // Where the pointer is, what lies there, and who has the front place and the mouse.
  [[nodiscard]] std::string WhatIsThere() const {
    POINT now{};
    ::GetCursorPos(&now);
    GUITHREADINFO front{};
    front.cbSize = sizeof front;
    ::GetGUIThreadInfo(0, &front);
    const auto named = [](HWND window) { return window == nullptr ? "none" : Window(window).Describe(); };
    return "it is at " + std::to_string(now.x) + ", " + std::to_string(now.y) + ", pressed was " +
           named(::WindowFromPoint(middle_)) + ", active is " + named(front.hwndActive) +
           ", the capture is with " + named(front.hwndCapture);
  }

  POINT middle_{};
  HWND handle_ = nullptr;
};

}  // namespace

std::vector<char> DropFilesBytes(const std::vector<std::string>& paths, POINT point) {
  std::wstring names;
  for (const std::string& path : paths) names += ToWide(path) + L'\0';
  names += L'\0';
  DROPFILES head{};
  head.pFiles = sizeof head;
  head.pt = point;
  head.fWide = TRUE;
  std::vector<char> bytes(sizeof head + names.size() * sizeof(wchar_t));
  std::memcpy(bytes.data(), &head, sizeof head);
  std::memcpy(bytes.data() + sizeof head, names.data(), names.size() * sizeof(wchar_t));
  return bytes;
}

void PostDroppedFiles(Window target, const std::vector<std::string>& paths, POINT client) {
  const std::vector<char> bytes = DropFilesBytes(paths, client);
  HANDLE process = ::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_WRITE, FALSE, target.ProcessId());
  // It belongs to the target from now on, which frees it or ends.
  void* memory = process == nullptr ? nullptr
                                    : ::VirtualAllocEx(process, nullptr, bytes.size(),
                                                       MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
  const bool written =
      memory != nullptr && ::WriteProcessMemory(process, memory, bytes.data(), bytes.size(), nullptr) != 0;
  if (process != nullptr) ::CloseHandle(process);
  if (!written) throw DriverError("no memory in the process of " + target.Describe());
  target.Post(WM_DROPFILES, reinterpret_cast<WPARAM>(memory));
}

DWORD DragFilesTo(POINT screen, const std::vector<std::string>& paths) {
  return DragListTo(screen, DropFilesBytes(paths, screen));
}

DWORD DragListTo(POINT screen, std::vector<char> list) {
  const Ole ole;
  DragWindow window(screen);
  window.Press();
  FileData data(std::move(list));
  Source source;
  DWORD effect = DROPEFFECT_NONE;
  std::exception_ptr failure;
  std::thread carrier([&] {
    try {
      Carry(window.Middle(), screen, source);
    } catch (...) {
      failure = std::current_exception();
      source.giveUp = true;
      StepMouseTo(window.Middle(), MOUSEEVENTF_LEFTUP);
    }
  });
  const HRESULT result =
      ::DoDragDrop(&data, &source, DROPEFFECT_COPY | DROPEFFECT_MOVE | DROPEFFECT_LINK, &effect);
  carrier.join();
  if (failure) std::rethrow_exception(failure);
  if (FAILED(result)) throw DriverError("the drag ended with " + std::to_string(result));
  return result == DRAGDROP_S_DROP ? effect : static_cast<DWORD>(DROPEFFECT_NONE);
}

DWORD DropFilesOnClass(REFCLSID classId, const std::vector<std::string>& paths) {
  const Ole ole;
  void* created = nullptr;
  const HRESULT found = ::CoCreateInstance(classId, nullptr, CLSCTX_LOCAL_SERVER, IID_IDropTarget, &created);
  if (FAILED(found)) throw DriverError("the class is not served: " + std::to_string(found));
  auto* const target = static_cast<IDropTarget*>(created);
  FileData data(DropFilesBytes(paths, {0, 0}));
  constexpr DWORD kOffered = DROPEFFECT_COPY | DROPEFFECT_LINK | DROPEFFECT_MOVE;
  DWORD effect = kOffered;
  HRESULT result = target->DragEnter(&data, MK_LBUTTON, {0, 0}, &effect);
  if (SUCCEEDED(result)) {
    effect = kOffered;
    result = target->Drop(&data, 0, {0, 0}, &effect);
  }
  target->Release();
  if (FAILED(result)) throw DriverError("the drop was refused: " + std::to_string(result));
  return effect;
}

}  // namespace zq::test
