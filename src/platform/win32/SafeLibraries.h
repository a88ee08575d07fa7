// Where the process looks for libraries that are named without their folder.
#pragma once

namespace zq {

// From now on in Windows' own folder alone. By default the program's folder comes first, and the one that
// somebody works in is asked, too; a portable program stands in `Downloads` at times, among files that any
// site has put there. To be called first of all. Throws std::runtime_error where the system refuses.
void LookForLibrariesInWindowsAlone();

}  // namespace zq
