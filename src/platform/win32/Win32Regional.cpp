#include "platform/win32/Win32Regional.h"

#include <windows.h>

#include "platform/win32/Wide.h"

namespace zq {
namespace {

std::string LocaleText(LCTYPE type) {
  wchar_t text[16] = {};
  const int length =
      ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, type, text, static_cast<int>(std::size(text)));
  return length > 0 ? FromWide({text, static_cast<std::size_t>(length - 1)}) : std::string();
}

}  // namespace

std::string Win32Regional::UpperCase(std::string_view text) {
  // A text that isn't valid UTF-8 can't name a file here; it stays as it is.
  const std::wstring wide = ToWideIfValid(text);
  if (wide.empty()) return std::string(text);
  std::wstring upper(wide.size(), L'\0');
  const int upperLength =
      ::LCMapStringEx(LOCALE_NAME_USER_DEFAULT, LCMAP_UPPERCASE, wide.data(), static_cast<int>(wide.size()),
                      upper.data(), static_cast<int>(upper.size()), nullptr, nullptr, 0);
  upper.resize(static_cast<std::size_t>(upperLength));
  return FromWide(upper);
}

std::string Win32Regional::DecimalSeparator() {
  return LocaleText(LOCALE_SDECIMAL);
}

std::string Win32Regional::GroupSeparator() {
  return LocaleText(LOCALE_STHOUSAND);
}

std::string Win32Regional::Now() {
  SYSTEMTIME now{};
  ::GetLocalTime(&now);
  wchar_t date[128] = {};
  wchar_t time[128] = {};
  ::GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, DATE_SHORTDATE, &now, nullptr, date,
                    static_cast<int>(std::size(date)), nullptr);
  ::GetTimeFormatEx(LOCALE_NAME_USER_DEFAULT, 0, &now, nullptr, time, static_cast<int>(std::size(time)));
  return FromWide(std::wstring(date) + L" " + time);
}

}  // namespace zq
