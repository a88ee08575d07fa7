// Text between UTF-8, which the tests speak, and the wide text of the system's calls.
#pragma once

#include <string>
#include <string_view>

namespace zq::test {

std::wstring ToWide(std::string_view utf8);
std::string ToUtf8(std::wstring_view wide);

}  // namespace zq::test
