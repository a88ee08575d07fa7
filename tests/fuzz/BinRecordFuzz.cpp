// The records of the Recycle Bin: any bytes are read within their bounds, and give a path that is valid text
// of one line on a drive or a share, or nothing.
#include "fuzz/Fuzz.h"
#include "manager/BinRecord.h"
#include "platform/PathPlace.h"
#include "platform/Utf8.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zq;
  const std::string_view bytes = test::TextOf(data, size);
  const std::optional<BinRecord> record = ReadBinRecord(bytes);
  if (!record) return 0;
  test::Require(record->version == 1 || record->version == 2);
  test::Require(BeginsOnADriveOrShare(record->originalPath));
  test::Require(record->originalPath.size() <= 2 * size);
  for (std::string_view rest = record->originalPath; !rest.empty();) {
    const Character character = FirstCharacter(rest);
    test::Require(character.isValid && character.value >= 0x20);
    rest.remove_prefix(character.sizeBytes);
  }
  return 0;
}
