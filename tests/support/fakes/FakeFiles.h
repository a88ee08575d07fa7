// FakeFiles: a file system in memory, with the failures that a test asks for.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/Files.h"
#include "platform/RunTimeError.h"

namespace zq::test {

// Paths are compared with ASCII case ignored; entries are listed in the order in which they were made.
class FakeFiles final : public Files {
 public:
  struct Node {
    std::string path;  // as made, without a backslash at its end
    std::uint32_t attributes = kAttributeArchive;
    std::uint64_t length = 0;  // as told; of a real content the content's
    std::string content;
  };

  // Setting the stage.
  Node& AddFile(const std::string& path, const std::string& content = {},
                std::uint32_t attributes = kAttributeArchive);
  Node& AddFileOfLength(const std::string& path, std::uint64_t length);
  Node& AddFolder(const std::string& path, std::uint32_t attributes = kAttributeDirectory);
  void Delete(const std::string& path);

  // Looking at it.
  bool Exists(const std::string& path) const { return Find(path) != nullptr; }
  const Node* Find(const std::string& path) const;
  Node* Find(const std::string& path);

  std::string currentFolder = "C:\\Current";
  std::set<std::string> unreadable;       // Read raises PermissionDenied
  std::set<std::string> unwritable;       // Write raises PathFileAccessError
  std::set<std::string> keepAttributes;   // SetAttributes is refused
  bool failEverything = false;            // each call that can say no says no
  std::optional<int> listingBreaksAfter;  // so many entries of each listing are handed over
  // "write C:\x", "record C:\x", "attributes C:\x 128", "folder ...", "remove ..."
  std::vector<std::string> log;

  std::optional<FileEntry> FindEntry(const std::string& pattern) override;
  ListEnd List(const std::string& pattern, const std::function<void(const FileEntry&)>& visit) override;
  std::optional<std::uint32_t> Attributes(const std::string& path) override;
  bool SetAttributes(const std::string& path, std::uint32_t attributes) override;
  bool MakeFolder(const std::string& path) override;
  bool Remove(const std::string& path) override;
  std::string Read(const std::string& path) override;
  void Write(const std::string& path, const std::string& bytes) override;
  void WriteRecord(const std::string& path, const std::string& bytes) override;
  std::string CurrentFolder() override { return currentFolder; }

 private:
  std::vector<FileEntry> Matches(const std::string& pattern) const;
  void Put(const std::string& path, const std::string& bytes);
  std::vector<Node> nodes_;
};

}  // namespace zq::test
