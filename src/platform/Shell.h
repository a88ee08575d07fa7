// Shell: opens what another program of the user's shows.
#pragma once

#include <string>

namespace zq {

struct ShellRequest {
  std::string verb;
  std::string file;  // or an address
  std::string parameters;
  std::string directory;
};

class Shell {
 public:
  virtual ~Shell() = default;

  // Carries out the verb, its window shown as usual. What becomes of it isn't told.
  virtual void Execute(const ShellRequest& request) = 0;
};

}  // namespace zq
