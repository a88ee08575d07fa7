// The job name of a command line: the first line is the program's folder, the rest the command line.
#include <optional>
#include <string>

#include "core/main/StartUp.h"
#include "fuzz/Fuzz.h"
#include "jobs/JobName.h"
#include "support/fakes/FakeRegional.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq;
  const auto [path, rest] = test::FirstLineAndRest(test::TextOf(data, size));
  const std::string appFolder = AppFolderFrom(std::string(path));
  const std::string commandLine(rest);
  test::Require(appFolder.ends_with('\\'));

  test::FakeRegional regional;
  const std::optional<std::string> name = JobNameFromCommandLine(commandLine, appFolder, regional);
  if (name) {
    // It can't lead out of the folder of jobs by a backslash, and is a part of what was asked for.
    test::Require(name->find('\\') == std::string::npos);
    test::Require(commandLine.find(*name) != std::string::npos);
  }

  // Any job of the program's own folder has its name, in quotes or without.
  std::string plain = commandLine;
  std::erase_if(plain, [](char c) { return c == '\\' || c == '"'; });
  const std::string jobPath = appFolder + "Jobs\\" + plain + ".zqj";
  if (!jobPath.starts_with('"')) {
    test::Require(JobNameFromCommandLine(jobPath, appFolder, regional) == plain);
    test::Require(JobNameFromCommandLine('"' + jobPath + '"', appFolder, regional) == plain);
  }
  return 0;
}
