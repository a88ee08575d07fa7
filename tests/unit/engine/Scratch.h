// A folder of its own for a test that destroys real files, and nothing outside it.
#pragma once

#include <filesystem>
#include <string>

namespace zq::engine::test {

// UTF-8, as the engine takes it.
std::string Utf8(const std::filesystem::path& path);
std::filesystem::path FromUtf8(const std::string& text);

std::string ReadBytes(const std::filesystem::path& path);
void WriteBytes(const std::filesystem::path& path, const std::string& bytes);

class Scratch {
 public:
  // Makes a new folder in the system's folder for temporary files, or in another one where that lies on a
  // file system whose files can't be overwritten in place. Throws if there is none, and where tests that
  // destroy files may not run: under Wine with the whole host as a drive.
  Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch();  // removes the folder and what is left in it

  const std::filesystem::path& Path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const { return path_ / FromUtf8(name); }

 private:
  std::filesystem::path path_;
};

}  // namespace zq::engine::test
