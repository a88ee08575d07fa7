// The names of tools and panels that several places speak of.
#pragma once

#include <string_view>

namespace zq {

inline constexpr std::string_view kJobPanel = "Static2";        // the name of the open job
inline constexpr std::string_view kItemCountPanel = "Static3";  // how many rows it has
inline constexpr std::string_view kFileMenu = "mnuFile";
inline constexpr std::string_view kActionsMenu = "mnuActions";  // also the list's context menu

}  // namespace zq
