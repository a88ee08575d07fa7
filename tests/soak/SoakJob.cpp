#include "soak/SoakJob.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "e2e/Wiping.h"
#include "support/driver/Text.h"

namespace zq::test {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargeFileBytes = 12u << 20;
constexpr char kKeptMark[] = "to be kept ";
constexpr std::size_t kKeptBytes = 2500;

std::string Numbered(const char* format, int number) {
  char text[40];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

// The same for each job, so that all jobs are alike: from nothing to some clusters.
std::size_t SizeOf(int file) {
  return file % 17 == 0 ? 0 : static_cast<std::size_t>(file) * 397 % 9000;
}

std::string ContentOf(const std::string& name, std::size_t bytes) {
  return Marked(kMark + name + " ", bytes);
}

}  // namespace

SoakJob::SoakJob(const ScratchFolder& scratch, int number, Kind kind, int files, bool large)
    : scratch_(scratch),
      kind_(kind),
      folder_(Numbered("soak%05d", number)),
      name_(Numbered("Job %05d", number)) {
  int inFolders = 0;
  switch (kind) {
    case Kind::Files:
      break;
    case Kind::Folder:
      FolderRow("papers", "*.*", "Yes", inFolders = files);
      Keep("papers.txt");
      break;
    case Kind::MaskedFolder:
      FolderRow("papers", "*.txt", "Yes", inFolders = files);
      Keep("papers\\inner\\kept.doc");
      Keep("papers\\kept.txt.doc");
      break;
    case Kind::Mixed:
      FolderRow("papers", "*.txt", "No", files / 4);
      FolderRow("letters", "*.*", "No", files / 4);
      inFolders = files / 4 * 2;
      Keep("letters\\inner\\kept.txt");
      break;
  }
  Keep("kept file.txt");
  Keep("papers too\\file 0001.txt");
  for (int i = inFolders; i < files; ++i) {
    const std::string name = Numbered("file %04d", i) + (i % 3 == 0 ? ".txt" : i % 3 == 1 ? ".doc" : ".dat");
    rows_.push_back({Secret(name, SizeOf(i)), "", "", {}});
    rows_.back().files = {rows_.back().path};
  }
  if (!large) return;
  if (kind == Kind::Folder || kind == Kind::MaskedFolder) {
    rows_[0].files.push_back(Secret("papers\\large file.txt", kLargeFileBytes));
  } else {
    rows_.push_back({Secret("large file.txt", kLargeFileBytes), "", "", {}});
    rows_.back().files = {rows_.back().path};
  }
}

std::string SoakJob::Secret(const std::string& name, std::size_t bytes) {
  const std::string path = scratch_.Make(folder_ + "\\" + name, ContentOf(name, bytes));
  sizes_[path] = bytes;
  return path;
}

void SoakJob::Keep(const std::string& name) {
  kept_.push_back(scratch_.Make(folder_ + "\\" + name, Marked(kKeptMark, kKeptBytes)));
  sizes_[kept_.back()] = kKeptBytes;
}

std::string SoakJob::FolderRow(const std::string& name, const char* mask, const char* subFolders, int files) {
  Row row{scratch_ / (folder_ + "\\" + name), mask, subFolders, {}};
  const bool deep = row.subFolders == "Yes";
  for (int i = 0; i < files; ++i) {
    const char* const place = !deep || i % 3 == 0 ? "\\" : i % 3 == 1 ? "\\inner\\" : "\\inner\\inmost\\";
    row.files.push_back(Secret(name + place + Numbered("file %04d.txt", i), SizeOf(i)));
  }
  rows_.push_back(row);
  return row.path;
}

std::size_t SoakJob::Files() const {
  std::size_t files = 0;
  for (const Row& row : rows_) files += row.files.size();
  return files;
}

std::string SoakJob::JobFileBytes() const {
  std::string folders;
  std::string files;
  for (const Row& row : rows_) {
    if (row.IsFolder()) {
      folders += Quoted(row.path) + "\r\n" + Quoted(row.mask) + "\r\n" + Quoted(row.subFolders) + "\r\n";
    } else {
      files += Quoted(row.path) + "\r\n";
    }
  }
  return "\"N/A\"\r\n\"[FOLDERS]\"\r\n" + folders + "\"[FILES]\"\r\n" + files;
}

std::vector<SoakJob::Row> SoakJob::Live() const {
  std::vector<Row> live;
  for (const Row& row : rows_) {
    if (PathExists(row.path)) live.push_back(row);
  }
  return live;
}

void SoakJob::ExpectContent(const std::string& path) const {
  ASSERT_TRUE(PathExists(path)) << path;
  EXPECT_TRUE(ReadFileBytes(path) == ContentOf(path.substr((scratch_ / folder_).size() + 1), sizes_.at(path)))
      << path;
}

void SoakJob::ExpectUntouched(const Row& row) const {
  for (const std::string& path : row.files) ExpectContent(path);
}

void SoakJob::ExpectWiped(const Row& row, const std::set<std::string>& held) const {
  for (const std::string& path : row.files) {
    if (held.contains(path)) {
      ExpectContent(path);
    } else {
      EXPECT_FALSE(PathExists(path)) << path;
    }
  }
  if (row.IsFolder()) {
    EXPECT_EQ(PathExists(row.path), !row.GoesWhole()) << row.path;
  }
}

void SoakJob::ExpectNothingNew() const {
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(ToWide(scratch_ / folder_))) {
    if (!entry.is_regular_file()) continue;
    const std::string path = ToUtf8(entry.path().wstring());
    EXPECT_TRUE(sizes_.contains(path)) << "not made by the job: " << path;
  }
}

void SoakJob::ExpectKept() const {
  for (const std::string& path : kept_) {
    ASSERT_TRUE(PathExists(path)) << path;
    EXPECT_TRUE(ReadFileBytes(path) == Marked(kKeptMark, kKeptBytes)) << path;
  }
}

void SoakJob::Clear() const {
  fs::remove_all(fs::path(ToWide(scratch_ / folder_)));
}

}  // namespace zq::test
