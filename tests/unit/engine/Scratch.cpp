#include "unit/engine/Scratch.h"

#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#endif

#include "engine/Device.h"

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

// Whether the engine would overwrite a file in this folder at all. It refuses to on a file system that puts
// new content in a new place, as the one below a container may.
bool TakesOverwriting(const std::filesystem::path& folder) {
  const std::unique_ptr<Device> device = MakeSystemDevice();
  std::unique_ptr<Folder> opened;
  std::unique_ptr<File> file;
  FileInfo info;
  if (!device->OpenFolder(Utf8(folder), opened).Ok() ||
      !opened->AddFile("probe", Access::Cached, file).Ok()) {
    return false;
  }
  const bool takes = file->Info(info).Ok() && info.notInPlace.empty();
  return file->Remove().Ok() && takes;
}

std::filesystem::path MakeFolderIn(const std::filesystem::path& above) {
  std::random_device random;
  const std::filesystem::path path = above / ("zq-engine-test-" + std::to_string(random()));
  std::error_code ignored;
  if (!std::filesystem::create_directory(path, ignored)) return {};
  if (TakesOverwriting(path)) return path;
  std::filesystem::remove(path, ignored);
  return {};
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
  std::vector<std::filesystem::path> places = {std::filesystem::temp_directory_path()};
#ifndef _WIN32
  places.insert(places.end(), {"/var/tmp", "/dev/shm", std::filesystem::current_path()});
#endif
  for (const std::filesystem::path& place : places) {
    path_ = MakeFolderIn(place);
    if (!path_.empty()) return;
  }
  throw std::runtime_error("there is no folder here, from " + Utf8(places.front()) +
                           " on, in which a file could be overwritten in place");
}

Scratch::~Scratch() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace zq::engine::test
