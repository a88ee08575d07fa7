// The dialog templates in this program's resources, as they were compiled.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace zq::test {

// One control, in dialog units.
struct TemplateItem {
  int id = 0;
  DWORD style = 0;
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  std::wstring windowClass;  // the system's name of it, for the classes that templates have numbers for, too
  std::wstring text;

  bool Is(const wchar_t* name) const { return ::lstrcmpiW(windowClass.c_str(), name) == 0; }
  bool IsVisible() const { return (style & WS_VISIBLE) != 0; }
  bool IsButtonOf(DWORD type) const { return Is(WC_BUTTONW) && (style & BS_TYPEMASK) == type; }
  bool IsRadio() const { return IsButtonOf(BS_AUTORADIOBUTTON) || IsButtonOf(BS_RADIOBUTTON); }
  bool IsTick() const { return IsRadio() || IsButtonOf(BS_AUTOCHECKBOX) || IsButtonOf(BS_CHECKBOX); }
  bool IsFrame() const { return IsButtonOf(BS_GROUPBOX); }
  bool IsPicture() const {
    const DWORD type = style & SS_TYPEMASK;
    return Is(WC_STATICW) && (type == SS_ICON || type == SS_BITMAP || type == SS_BLACKFRAME);
  }
  bool IsText() const { return Is(WC_STATICW) && !IsPicture(); }
};

struct DialogTemplate {
  int id = 0;
  DWORD style = 0;
  std::wstring font;
  int points = 0;
  std::vector<TemplateItem> items;
};

// Reads the extended form of a template, which all of ours have.
class TemplateReader {
 public:
  explicit TemplateReader(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

  DialogTemplate Read(int id) {
    DialogTemplate dialog;
    dialog.id = id;
    if (Number<WORD>() != 1 || Number<WORD>() != 0xFFFF) throw std::runtime_error("not an extended template");
    Skip(8);  // help id, extended style
    dialog.style = Number<DWORD>();
    const int count = Number<WORD>();
    Skip(8);  // place and size
    Name();   // menu
    Name();   // window class
    Name();   // caption
    dialog.points = Number<WORD>();
    Skip(4);  // weight, italic, character set
    dialog.font = Text();
    for (int i = 0; i < count; ++i) dialog.items.push_back(Item());
    return dialog;
  }

 private:
  TemplateItem Item() {
    at_ = (at_ + 3) / 4 * 4;
    TemplateItem item;
    Skip(8);
    item.style = Number<DWORD>();
    item.left = Number<std::int16_t>();
    item.top = Number<std::int16_t>();
    item.width = Number<std::int16_t>();
    item.height = Number<std::int16_t>();
    item.id = static_cast<int>(Number<DWORD>());
    item.windowClass = Name();
    item.text = Name();
    Skip(Number<WORD>());
    return item;
  }

  template <class T>
  T Number() {
    if (at_ + sizeof(T) > bytes_.size()) throw std::runtime_error("the template ends early");
    T value{};
    std::memcpy(&value, bytes_.data() + at_, sizeof value);
    at_ += sizeof value;
    return value;
  }

  void Skip(std::size_t count) { at_ += count; }

  std::wstring Text() {
    std::wstring text;
    while (const auto unit = Number<wchar_t>()) text += unit;
    return text;
  }

  // A text, or one of the numbers that stand for the classes of old.
  std::wstring Name() {
    constexpr const wchar_t* kClasses[] = {WC_BUTTONW,  WC_EDITW,      WC_STATICW,
                                           WC_LISTBOXW, WC_SCROLLBARW, WC_COMBOBOXW};
    constexpr WORD kFirstClass = 0x80;
    if (Number<WORD>() != 0xFFFF) {
      at_ -= sizeof(WORD);
      return Text();
    }
    const WORD number = Number<WORD>();
    const bool known = number >= kFirstClass && number - kFirstClass < static_cast<int>(std::size(kClasses));
    return known ? kClasses[number - kFirstClass] : L"";
  }

  std::vector<std::uint8_t> bytes_;
  std::size_t at_ = 0;
};

inline std::vector<DialogTemplate> DialogTemplates() {
  std::vector<DialogTemplate> all;
  ::EnumResourceNamesW(
      nullptr, MAKEINTRESOURCEW(5),  // RT_DIALOG
      [](HMODULE, LPCWSTR, LPWSTR name, LONG_PTR param) -> BOOL {
        const HRSRC found = ::FindResourceW(nullptr, name, MAKEINTRESOURCEW(5));
        const auto* first = static_cast<const std::uint8_t*>(::LockResource(::LoadResource(nullptr, found)));
        TemplateReader reader({first, first + ::SizeofResource(nullptr, found)});
        reinterpret_cast<std::vector<DialogTemplate>*>(param)->push_back(
            reader.Read(static_cast<int>(reinterpret_cast<ULONG_PTR>(name))));
        return TRUE;
      },
      reinterpret_cast<LONG_PTR>(&all));
  return all;
}

}  // namespace zq::test
