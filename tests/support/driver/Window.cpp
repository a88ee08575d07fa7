#include "support/driver/Window.h"

#include <initializer_list>
#include <utility>

#include "support/driver/Text.h"

namespace zq::test {
namespace {

constexpr UINT kAnswerMs = 15000;

INPUT KeyInput(WORD key, bool up) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key;
  input.ki.wScan = static_cast<WORD>(::MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
  input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
  return input;
}

// The mouse at a point of the screen, with buttons that go down or up there: one input, so that no place
// which the screen reports late comes between the move and the button.
INPUT MouseInput(POINT screen, DWORD buttons) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | buttons;
  const int width = ::GetSystemMetrics(SM_CXSCREEN);
  const int height = ::GetSystemMetrics(SM_CYSCREEN);
  // Rounded up, since the way back to pixels rounds down.
  input.mi.dx = static_cast<LONG>((screen.x * 65536LL + width - 1) / width);
  input.mi.dy = static_cast<LONG>((screen.y * 65536LL + height - 1) / height);
  return input;
}

// The focus of the window's thread, or none.
HWND FocusOf(Window window) {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  const DWORD thread = ::GetWindowThreadProcessId(window.Handle(), nullptr);
  return ::GetGUIThreadInfo(thread, &info) != 0 ? info.hwndFocus : nullptr;
}

}  // namespace

std::string WithoutAccessKey(std::string_view caption) {
  std::string plain;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&' && i + 1 < caption.size()) ++i;
    plain += caption[i];
  }
  return plain;
}

LRESULT Window::Send(UINT message, WPARAM wParam, LPARAM lParam) const {
  DWORD_PTR result = 0;
  if (::SendMessageTimeoutW(handle_, message, wParam, lParam, SMTO_NORMAL, kAnswerMs, &result) == 0) {
    const DWORD error = ::GetLastError();
    throw DriverError("no answer to message " + std::to_string(message) + " from " + Describe() + ", error " +
                      std::to_string(error));
  }
  return static_cast<LRESULT>(result);
}

void Window::Post(UINT message, WPARAM wParam, LPARAM lParam) const {
  if (::PostMessageW(handle_, message, wParam, lParam) == 0) {
    throw DriverError("can't post message " + std::to_string(message) + " to " + Describe());
  }
}

std::string Window::Text() const {
  const auto length = static_cast<std::size_t>(Send(WM_GETTEXTLENGTH));
  std::wstring text(length + 1, L'\0');
  const LRESULT copied = Send(WM_GETTEXT, length + 1, reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<std::size_t>(copied));
  return ToUtf8(text);
}

bool Window::HasText(std::string_view text) const {
  try {
    return Text() == text;
  } catch (const DriverError&) {
    if (*this) throw;
    return false;
  }
}

std::string Window::ClassName() const {
  wchar_t name[256];
  const int length = ::GetClassNameW(handle_, name, 256);
  return ToUtf8({name, static_cast<std::size_t>(length)});
}

DWORD Window::ProcessId() const {
  DWORD id = 0;
  ::GetWindowThreadProcessId(handle_, &id);
  return id;
}

int Window::Id() const {
  return ::GetDlgCtrlID(handle_);
}
LONG_PTR Window::Style() const {
  return ::GetWindowLongPtrW(handle_, GWL_STYLE);
}
LONG_PTR Window::ExtendedStyle() const {
  return ::GetWindowLongPtrW(handle_, GWL_EXSTYLE);
}

bool Window::HasFocus() const {
  return FocusOf(*this) == handle_;
}

bool Window::HoldsFocus() const {
  HWND focus = FocusOf(*this);
  return focus == handle_ || (focus != nullptr && ::IsChild(handle_, focus) != FALSE);
}

RECT Window::ScreenRect() const {
  RECT rect{};
  if (::GetWindowRect(handle_, &rect) == 0) throw DriverError("no rectangle of " + Describe());
  return rect;
}

POINT Window::Centre() const {
  const RECT rect = ScreenRect();
  return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

std::vector<Window> Window::Children() const {
  std::vector<Window> children;
  ::EnumChildWindows(
      handle_,
      [](HWND child, LPARAM list) -> BOOL {
        reinterpret_cast<std::vector<Window>*>(list)->emplace_back(child);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&children));
  return children;
}

Window Window::Child(int id) const {
  for (Window child : Children()) {
    if (child.Id() == id) return child;
  }
  throw DriverError("no control " + std::to_string(id) + " in " + Describe());
}

Window Window::Child(std::string_view caption) const {
  for (Window child : Children()) {
    if (WithoutAccessKey(child.Text()) == caption) return child;
  }
  throw DriverError("no control '" + std::string(caption) + "' in " + Describe());
}

Window Window::ChildOfClass(std::string_view className, int index) const {
  for (Window child : Children()) {
    if (child.ClassName() == className && index-- == 0) return child;
  }
  throw DriverError("no control of class " + std::string(className) + " in " + Describe());
}

Window Window::WaitChild(int id, Limit limit) const {
  Window found;
  Await(
      "control " + std::to_string(id) + " in " + Describe(),
      [&] {
        for (Window child : Children()) {
          if (child.Id() == id) found = child;
        }
        return static_cast<bool>(found);
      },
      limit);
  return found;
}

void Window::Press() const {
  if (!IsEnabled()) throw DriverError("can't press what is disabled: " + Describe());
  Post(BM_CLICK);
}

void Window::Command(int id) const {
  Post(WM_COMMAND, static_cast<WPARAM>(id));
}
void Window::Close() const {
  Post(WM_CLOSE);
}

void Window::PostKey(WORD key) const {
  const LPARAM scan = static_cast<LPARAM>(::MapVirtualKeyW(key, MAPVK_VK_TO_VSC)) << 16;
  Post(WM_KEYDOWN, key, scan | 1);
  Post(WM_KEYUP, key, scan | 1 | static_cast<LPARAM>(0xC0000000));
}

void Window::PostText(std::string_view text) const {
  for (wchar_t unit : ToWide(text)) Post(WM_CHAR, unit, 1);
}

void Window::SetText(std::string_view text) const {
  const std::wstring wide = ToWide(text);
  Send(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(wide.c_str()));
  // An edit box of several lines doesn't tell its parent of WM_SETTEXT.
  if (ClassName() == "Edit" && (Style() & ES_MULTILINE) != 0) {
    Window(::GetParent(handle_))
        .Send(WM_COMMAND, MAKEWPARAM(Id(), EN_CHANGE), reinterpret_cast<LPARAM>(handle_));
  }
}

bool Window::IsChecked() const {
  return Send(BM_GETCHECK) == BST_CHECKED;
}

void Window::WaitEnabled(Limit limit) const {
  Await(
      Describe() + " to be enabled", [this] { return IsEnabled(); }, limit);
}

void Window::WaitDisabled(Limit limit) const {
  Await(
      Describe() + " to be disabled", [this] { return !IsEnabled(); }, limit);
}

void Window::WaitText(std::string_view text, Limit limit) const {
  Await(
      "the text '" + std::string(text) + "' in " + Describe(), [&] { return Text() == text; }, limit);
}

void Window::WaitGone(Limit limit) const {
  Await(
      "the end of " + Describe(), [this] { return !*this; }, limit);
}

void Window::WaitVisible(Limit limit) const {
  Await(
      Describe() + " to be seen", [this] { return IsVisible(); }, limit);
}

void Window::WaitHidden(Limit limit) const {
  Await(
      Describe() + " to be hidden", [this] { return !IsVisible(); }, limit);
}

std::string Window::Describe() const {
  if (!*this) return "a window that is gone";
  // Not by Text(), which asks the process: this is needed when it doesn't answer.
  wchar_t text[128];
  const int length = ::InternalGetWindowText(handle_, text, 128);
  return ClassName() + " '" + ToUtf8({text, static_cast<std::size_t>(length)}) + "' (" +
         std::to_string(Id()) + ")";
}

std::vector<Window> TopLevelWindows(const std::function<bool(Window)>& condition) {
  std::vector<Window> all;
  ::EnumWindows(
      [](HWND window, LPARAM list) -> BOOL {
        reinterpret_cast<std::vector<Window>*>(list)->emplace_back(window);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&all));
  std::erase_if(all, [&](Window window) { return !condition(window); });
  return all;
}

namespace {

// The X server tells which keys are down with each change of its focus, to the window and to the desktop that
// it lies on, and Wine takes that for the state of all keys. They hear it in their own time: so all that the
// server has to say is waited for, by questions that it answers in its turn (its pixels), and by messages
// between which they take what has come.
void LetItHear(Window window) {
  constexpr int kTurns = 3;
  HDC screen = ::GetDC(nullptr);
  for (int turn = 0; turn < kTurns; ++turn) {
    ::GetPixel(screen, 0, 0);
    window.Send(WM_NULL);
    Window(::GetDesktopWindow()).Send(WM_NULL);
  }
  ::ReleaseDC(nullptr, screen);
}

void ComeToFront(Window window) {
  ::SetForegroundWindow(window.Handle());
  Await("the front place of " + window.Describe() + ", with the focus",
        [&] { return ::GetForegroundWindow() == window.Handle() && window.HoldsFocus(); });
  LetItHear(window);
}

void Type(std::vector<INPUT> inputs) {
  const auto count = static_cast<UINT>(inputs.size());
  if (::SendInput(count, inputs.data(), sizeof(INPUT)) != count) throw DriverError("can't type a key");
}

}  // namespace

void TypeKey(Window window, WORD key, const std::vector<WORD>& modifiers) {
  std::vector<INPUT> inputs;
  for (WORD modifier : modifiers) inputs.push_back(KeyInput(modifier, false));
  inputs.push_back(KeyInput(key, false));
  inputs.push_back(KeyInput(key, true));
  for (WORD modifier : modifiers) inputs.push_back(KeyInput(modifier, true));
  ComeToFront(window);
  Type(std::move(inputs));
}

void TypeText(Window window, std::string_view text) {
  std::vector<INPUT> inputs;
  for (wchar_t unit : ToWide(text)) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wScan = unit;
    for (const DWORD released : {DWORD{0}, DWORD{KEYEVENTF_KEYUP}}) {
      input.ki.dwFlags = KEYEVENTF_UNICODE | released;
      inputs.push_back(input);
    }
  }
  ComeToFront(window);
  Type(std::move(inputs));
}

void StepMouseTo(POINT screen, DWORD buttons) {
  INPUT input = MouseInput(screen, buttons);
  if (::SendInput(1, &input, sizeof input) != 1) throw DriverError("can't move the mouse");
}

void MoveMouseTo(POINT screen) {
  // A window that has just come up under the X server's pointer still reports where that one was; a
  // click in between would be taken for a drag. So the X pointer is brought along, and both must rest.
  constexpr int kRestPolls = 12;
  int rests = 0;
  Await("the mouse to rest where it was moved", [&] {
    POINT now{};
    ::GetCursorPos(&now);
    if (now.x == screen.x && now.y == screen.y) return ++rests > kRestPolls;
    rests = 0;
    ::SetCursorPos(screen.x, screen.y);
    StepMouseTo(screen);
    return false;
  });
}

void ClickAt(POINT screen, bool right, bool twice) {
  MoveMouseTo(screen);
  const DWORD down = right ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_LEFTDOWN;
  const DWORD up = right ? MOUSEEVENTF_RIGHTUP : MOUSEEVENTF_LEFTUP;
  for (int i = 0; i < (twice ? 2 : 1); ++i) {
    INPUT inputs[] = {MouseInput(screen, down), MouseInput(screen, up)};
    if (::SendInput(2, inputs, sizeof(INPUT)) != 2) throw DriverError("can't click");
  }
}

}  // namespace zq::test
