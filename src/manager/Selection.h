// Selection: what the user has chosen in the shell, as far as it may be wiped.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "manager/RecycleBin.h"

namespace zq {

class Regional;

// The places of this machine that are not to be destroyed.
struct SystemPlaces {
  std::string windows;               // nothing in it either
  std::vector<std::string> folders;  // not they themselves, and nothing that holds them
  std::string program;               // the folder that we run from, likewise
  // The path that this one really leads to: links, short names and replaced drives resolved; empty if that
  // can't be told.
  std::function<std::string(const std::string& path)> real;
};

struct Selection {
  std::vector<WipeItem> items;  // each once, and none that lies in another's folder
  Measured measured;
  std::vector<std::string> refusals;  // if there is one, nothing of the selection is wiped
};

// Looks at the paths, which come from another program: any text may stand there.
Selection LookAtSelection(Files& files, Process& process, Regional& regional, const SystemPlaces& places,
                          const std::vector<std::string>& paths);

}  // namespace zq
