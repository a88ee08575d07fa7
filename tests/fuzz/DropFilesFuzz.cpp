// The file list of a drop: any bytes are read within their bounds, and give names without nulls, in one of
// the two forms.
#include "controls/DropFiles.h"
#include "fuzz/Fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq;
  const DropList list = ReadDropFiles(test::TextOf(data, size));
  test::Require(list.wide.empty() || list.narrow.empty());
  std::size_t bytes = 0;
  for (const std::u16string& name : list.wide) {
    test::Require(!name.empty() && name.find(u'\0') == std::u16string::npos);
    bytes += 2 * (name.size() + 1);
  }
  for (const std::string& name : list.narrow) {
    test::Require(!name.empty() && name.find('\0') == std::string::npos);
    bytes += name.size() + 1;
  }
  test::Require(bytes <= size);
  return 0;
}
