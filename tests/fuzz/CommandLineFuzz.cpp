// The words of a command line: any text is split or refused, and words written out one by one come
// back.
#include <string>
#include <vector>

#include "fuzz/Fuzz.h"
#include "jobs/AddFiles.h"
#include "platform/RunTimeError.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq;
  const std::string commandLine(test::TextOf(data, size));
  std::vector<std::string> words;
  try {
    words = SplitCommandLine(commandLine);
  } catch (const RunTimeError& error) {
    test::Require(error.Number() == ErrorNumber::InvalidProcedureCall);
    test::Require(commandLine.find('"') != std::string::npos);
    return 0;
  }

  std::size_t wordBytes = 0;
  std::string rewritten;
  bool plain = true;
  for (const std::string& word : words) {
    wordBytes += word.size();
    plain = plain && word.find('"') == std::string::npos;
    rewritten += '"' + word + "\" ";
  }
  test::Require(wordBytes <= size);
  test::Require(words.size() <= size + 1);
  if (plain && !words.empty()) {
    rewritten.pop_back();
    test::Require(SplitCommandLine(rewritten) == words);
  }
  return 0;
}
