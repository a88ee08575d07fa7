// The records of the Recycle Bin as Windows writes them, byte for byte, for tests that build a bin.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zq::test {

inline std::string LittleEndian(std::uint64_t number, int count) {
  std::string bytes;
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
  return bytes;
}

inline std::string Utf16Bytes(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) bytes += LittleEndian(unit, 2);
  return bytes;
}

inline constexpr std::uint64_t kDeletedAt = 0x01DB3C8A5E6F7080;

// 544 bytes, up to Windows 8.1.
inline std::string FirstVersionRecord(std::u16string_view path, std::uint64_t size) {
  std::string bytes =
      LittleEndian(1, 8) + LittleEndian(size, 8) + LittleEndian(kDeletedAt, 8) + Utf16Bytes(path);
  bytes.resize(544, '\0');
  return bytes;
}

// As long as the path, since Windows 10.
inline std::string SecondVersionRecord(std::u16string_view path, std::uint64_t size) {
  return LittleEndian(2, 8) + LittleEndian(size, 8) + LittleEndian(kDeletedAt, 8) +
         LittleEndian(path.size() + 1, 4) + Utf16Bytes(path) + LittleEndian(0, 2);
}

}  // namespace zq::test
