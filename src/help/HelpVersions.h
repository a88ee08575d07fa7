// The versions of Windows, of the help control and of the browser that the help class knows.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "help/HelpMachine.h"

namespace zq {

// The least version texts behind the numbers of HHVerifyMinConfig; nothing for a number that has none.
std::optional<std::string_view> LeastHelpVersion(std::int32_t minHHVersion);
std::optional<std::string_view> LeastBrowserVersion(std::int32_t minIEVersion);

// The names of versions; "unknown" for any other text.
std::string_view HelpFriendlyName(std::string_view version);
std::string_view BrowserFriendlyName(std::string_view version);

// 1 to 5 by the age of the system, 0 for one that isn't known. Whatever is younger than major version 5 is
// not known, and so counts as old.
std::int32_t WindowsVersionOf(const SystemVersion& version);

// The version of a file as "4.72.7290.00"; nothing where it has no version information.
std::optional<std::string> GetFileVersionText(FileVersions& versions, const std::string& file);

}  // namespace zq
