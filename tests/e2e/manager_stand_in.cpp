// Stands in the place of the companion program: owns its window, hidden, and ends when that is told to close.
#include <windows.h>

namespace {

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DESTROY) ::PostQuitMessage(0);
  return ::DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = &Procedure;
  windowClass.hInstance = instance;
  windowClass.lpszClassName = L"ManagerStandIn";
  if (!::RegisterClassW(&windowClass)) return 1;
  if (!::CreateWindowExW(0, windowClass.lpszClassName, L"ZQ Explorer Manager", WS_OVERLAPPED, 0, 0, 10, 10,
                         nullptr, nullptr, instance, nullptr))
    return 1;
  MSG message{};
  while (::GetMessageW(&message, nullptr, 0, 0) > 0) ::DispatchMessageW(&message);
  return 0;
}
