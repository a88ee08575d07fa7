// SystemPlaces: the places of this machine that are not to be destroyed, as Windows knows them.
#pragma once

#include <string>

#include "manager/Selection.h"

namespace zq {

// `programFolder`: the folder that we run from.
SystemPlaces PlacesOfThisMachine(const std::string& programFolder);

}  // namespace zq
