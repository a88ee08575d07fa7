// One job of the soak: what it makes on the disc, and what has to be left of that at any moment after.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/driver/Scratch.h"

namespace zq::test {

class SoakJob {
 public:
  enum class Kind { Files, Folder, MaskedFolder, Mixed };
  static constexpr int kKinds = 4;

  struct Row {
    std::string path;
    std::string mask;                // empty for a file
    std::string subFolders;          // "Yes", "No", or empty for a file
    std::vector<std::string> files;  // that its wipe destroys

    bool IsFolder() const { return !subFolders.empty(); }
    bool GoesWhole() const { return !IsFolder() || (mask == "*.*" && subFolders == "Yes"); }
  };

  // `files` small ones, and a large one that keeps the wipe busy, in their rows, with others beside them that
  // no row names. All names are of one length whatever the number.
  SoakJob(const ScratchFolder& scratch, int number, Kind kind, int files, bool large);

  const std::string& Name() const { return name_; }
  Kind TheKind() const { return kind_; }
  // Folders first, as the program lists them.
  const std::vector<Row>& Rows() const { return rows_; }
  std::size_t Files() const;
  // What the file of the job holds.
  std::string JobFileBytes() const;

  // The rows whose file or folder is there.
  std::vector<Row> Live() const;

  void ExpectUntouched(const Row& row) const;
  // All of it is gone but these; a folder that a mask has left, too, is there.
  void ExpectWiped(const Row& row, const std::set<std::string>& held) const;
  // Of the rows that were stopped: nothing is there that wasn't, under its own name.
  void ExpectNothingNew() const;
  void ExpectKept() const;

  // Takes away what the wipe has left: the files that no row names.
  void Clear() const;

 private:
  std::string Secret(const std::string& name, std::size_t bytes);
  void ExpectContent(const std::string& path) const;
  void Keep(const std::string& name);
  std::string FolderRow(const std::string& name, const char* mask, const char* subFolders, int files);

  const ScratchFolder& scratch_;
  const Kind kind_;
  const std::string folder_;  // in the scratch folder
  const std::string name_;
  std::vector<Row> rows_;
  std::map<std::string, std::size_t> sizes_;  // of every file that the job has made
  std::vector<std::string> kept_;
};

}  // namespace zq::test
