// OneSizeFiles: a file system that answers at once, for measuring our own work on many rows. Every path
// names a file of 1,500 bytes, and each call is counted.
#pragma once

#include <cstddef>
#include <string>

#include "platform/Files.h"

namespace zq::test {

class OneSizeFiles final : public Files {
 public:
  std::string content;    // of every file
  std::size_t calls = 0;  // of all members together

  std::optional<FileEntry> FindEntry(const std::string&) override {
    ++calls;
    return Entry();
  }
  ListEnd List(const std::string&, const std::function<void(const FileEntry&)>& visit) override {
    ++calls;
    visit(Entry());
    return ListEnd::Complete;
  }
  std::optional<std::uint32_t> Attributes(const std::string&) override {
    ++calls;
    return kAttributeArchive;
  }
  bool SetAttributes(const std::string&, std::uint32_t) override { return false; }
  bool MakeFolder(const std::string&) override { return false; }
  bool Remove(const std::string&) override { return false; }
  std::string Read(const std::string&) override {
    ++calls;
    return content;
  }
  void Write(const std::string&, const std::string& bytes) override {
    ++calls;
    content = bytes;
  }
  void WriteRecord(const std::string& path, const std::string& bytes) override { Write(path, bytes); }
  std::string CurrentFolder() override { return {}; }

 private:
  static FileEntry Entry() {
    FileEntry entry;
    entry.attributes = kAttributeArchive;
    entry.sizeLow = 1500;
    return entry;
  }
};

}  // namespace zq::test
