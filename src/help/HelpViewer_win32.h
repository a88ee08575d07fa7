// Win32HelpViewer: the help viewer of Windows, hhctrl.ocx, and what goes with it on the desktop.
#pragma once

#include <windows.h>

#include "help/HelpViewer.h"

namespace zq {

using HtmlHelpCall = HWND(WINAPI*)(HWND owner, LPCWSTR file, UINT command, DWORD_PTR data);

class Win32HelpViewer final : public HelpViewer {
 public:
  // The viewer is loaded at the first call, and stays. Where it can't be, each call raises FileNotFound.
  Win32HelpViewer() = default;
  explicit Win32HelpViewer(HtmlHelpCall call) : call_(call) {}

  void DisplayTopic(WindowHandle owner, const std::string& target, const OptionalText& topicUrl) override;
  void DisplayContext(WindowHandle owner, const std::string& target, std::int32_t mapId) override;
  void DisplayContents(WindowHandle owner, const std::string& target) override;
  void DisplayIndex(WindowHandle owner, const std::string& target) override;
  void DisplaySearch(WindowHandle owner, const std::string& target, const HelpSearchQuery& query) override;
  void LookUpKeyword(WindowHandle owner, const std::string& file, const HelpLink& link) override;
  void LookUpALink(WindowHandle owner, const std::string& file, const HelpLink& link) override;
  void DisplayPopup(WindowHandle owner, const OptionalText& target, const HelpPopup& popup) override;
  void CloseAll(const std::string& file) override;

 private:
  void Call(WindowHandle owner, const OptionalText& target, UINT command, DWORD_PTR data);
  void LookUp(WindowHandle owner, const std::string& file, UINT command, const HelpLink& link);

  HtmlHelpCall call_ = nullptr;
};

class Win32HelpDesktop final : public HelpDesktop {
 public:
  ScreenPoint CursorPosition() override;
  std::string StringResource(std::int32_t id) override;
  void DefaultMessage(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                      std::intptr_t lParam) override;
};

class Win32HelpBoxes final : public HelpBoxes {
 public:
  void Show(const std::string& text, const std::string& caption, std::uint32_t style) override;
};

}  // namespace zq
