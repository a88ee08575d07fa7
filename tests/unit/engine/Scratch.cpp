#include "unit/engine/Scratch.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <stdexcept>

#ifdef _WIN32
#include <windows.h>
#endif

namespace zq::engine::test {
namespace {

void RefuseOutsideTheCage() {
#ifdef _WIN32
  const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
  const bool isWine = ntdll != nullptr && ::GetProcAddress(ntdll, "wine_get_version") != nullptr;
  if (isWine && ::GetDriveTypeW(L"Z:\\") != DRIVE_NO_ROOT_DIR) {
    throw std::runtime_error("this test destroys files and doesn't run in a Wine prefix that has a drive Z:");
  }
#endif
}

}  // namespace

std::string Utf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

std::filesystem::path FromUtf8(const std::string& text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  if (!file.flush()) throw std::runtime_error("can't write " + Utf8(path));
}

Scratch::Scratch() {
  RefuseOutsideTheCage();
  std::random_device random;
  path_ = std::filesystem::temp_directory_path() / ("zq-engine-test-" + std::to_string(random()));
  if (!std::filesystem::create_directory(path_)) throw std::runtime_error("can't make " + Utf8(path_));
}

Scratch::~Scratch() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace zq::engine::test
