#include "controls/DropFiles.h"

#include <cstdint>
#include <cstring>

namespace zq {
namespace {

// Of DROPFILES: where the names begin, and whether they are of 16 bits a unit.
constexpr std::size_t kOffsetPlace = 0;
constexpr std::size_t kWidePlace = 16;
constexpr std::size_t kHeaderBytes = 20;

std::uint32_t NumberAt(std::string_view bytes, std::size_t place) {
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[place + i]);
  return number;
}

// Names with a null behind each, and one more at the end.
template <typename Text>
std::vector<Text> Names(std::string_view bytes) {
  using Unit = typename Text::value_type;
  std::vector<Text> names;
  Text name;
  for (; bytes.size() >= sizeof(Unit); bytes.remove_prefix(sizeof(Unit))) {
    Unit unit{};
    std::memcpy(&unit, bytes.data(), sizeof unit);
    if (unit != Unit{}) {
      name += unit;
      continue;
    }
    if (name.empty()) return names;
    names.push_back(std::move(name));
    name.clear();
  }
  return {};  // cut off: the last name may be the beginning of another file's
}

}  // namespace

DropList ReadDropFiles(std::string_view bytes) {
  if (bytes.size() < kHeaderBytes) return {};
  const std::uint32_t offset = NumberAt(bytes, kOffsetPlace);
  if (offset < kHeaderBytes || offset > bytes.size()) return {};
  DropList list;
  const std::string_view names = bytes.substr(offset);
  if (NumberAt(bytes, kWidePlace) != 0) {
    list.wide = Names<std::u16string>(names);
  } else {
    list.narrow = Names<std::string>(names);
  }
  return list;
}

}  // namespace zq
