// Searches a raw image for marks: what of files and names is still on it after they were wiped.
//   find_marks IMAGE MARKS [--ntfs | --fat] [--region LABEL FIRST LAST]...
// MARKS is a text file. Each line is `content MARK` or `name MARK`, the mark being what stands at the start
// of a name: letters and digits, in small letters for a long name, in capitals for one that FAT can keep as
// it is.
//
// A name is looked for in UTF-8, in UTF-16LE, in the pieces into which FAT cuts a long name, and in FAT's
// short form, which has lost its first letter when the entry was deleted. One line for each finding:
//   name FORM LABEL OFFSET MARK
// LABEL is that of the region (bytes FIRST to LAST of the image) that holds it, else what the file system
// writes at the head of its blocks tells, else `elsewhere`. Content is counted in sectors:
//   content LABEL SECTORS
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

constexpr std::size_t kSectorBytes = 512;

struct Pattern {
  std::string bytes;
  const char* form;
  std::string mark;
};

struct Region {
  std::string label;
  std::uint64_t first;
  std::uint64_t last;
};

enum class Layout { Plain, Ntfs, Fat };

std::string Utf16(std::string_view text) {
  std::string wide;
  for (const char c : text) {
    wide += c;
    wide += '\0';
  }
  return wide;
}

std::string Capitals(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

void AddName(const std::string& mark, std::vector<Pattern>& patterns) {
  const bool isShort = mark == Capitals(mark);
  patterns.push_back({mark, "utf8", mark});
  if (isShort) {
    patterns.push_back({mark.substr(1) + "TXT", "8.3", mark});
  } else {
    patterns.push_back({Utf16(mark.substr(5, 6)), "utf16", mark});
  }
  // Five letters, then six: where FAT cuts. Other systems keep them together, and then it is one finding.
  patterns.push_back({Utf16(mark.substr(0, 5)), "utf16", mark});
  patterns.push_back({Capitals(mark.substr(1, 5)) + "~1", "8.3", mark});
}

// The image's bytes, mapped; most of it is holes.
class Image {
 public:
  explicit Image(const char* path) {
    const int fd = ::open(path, O_RDONLY | O_CLOEXEC);
    struct stat facts {};
    if (fd < 0 || ::fstat(fd, &facts) != 0) {
      std::perror(path);
      std::exit(2);
    }
    size_ = static_cast<std::size_t>(facts.st_size);
    memory_ = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, fd, 0);
    if (memory_ == MAP_FAILED) {
      std::perror(path);
      std::exit(2);
    }
    for (off_t start = ::lseek(fd, 0, SEEK_DATA); start >= 0; start = ::lseek(fd, start, SEEK_DATA)) {
      const off_t end = ::lseek(fd, start, SEEK_HOLE);
      data_.push_back({static_cast<std::size_t>(start), static_cast<std::size_t>(end)});
      start = end;
    }
    ::close(fd);
  }
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;
  ~Image() { ::munmap(memory_, size_); }

  struct Range {
    std::size_t first;
    std::size_t end;
  };

  std::string_view Bytes() const { return {static_cast<const char*>(memory_), size_}; }
  // What isn't a hole: no pattern begins in one.
  const std::vector<Range>& Data() const { return data_; }

 private:
  std::vector<Range> data_;
  void* memory_ = nullptr;
  std::size_t size_ = 0;
};

// Finds every pattern at every offset. The first four bytes of a pattern select it.
class Finder {
 public:
  explicit Finder(const std::vector<Pattern>& patterns) {
    for (const Pattern& pattern : patterns) {
      std::uint32_t key = 0;
      std::memcpy(&key, pattern.bytes.data(), sizeof key);
      byStart_[key].push_back(&pattern);
      mayStart_[key & 0xFFFF] = true;
    }
  }

  template <typename Found>
  void Search(std::string_view bytes, std::size_t first, std::size_t end, const Found& found) const {
    for (std::size_t i = first; i + sizeof(std::uint32_t) <= end; ++i) {
      std::uint32_t key = 0;
      std::memcpy(&key, bytes.data() + i, sizeof key);
      if (!mayStart_[key & 0xFFFF]) continue;
      const auto candidates = byStart_.find(key);
      if (candidates == byStart_.end()) continue;
      for (const Pattern* pattern : candidates->second) {
        if (bytes.compare(i, pattern->bytes.size(), pattern->bytes) == 0) found(i, *pattern);
      }
    }
  }

 private:
  std::unordered_map<std::uint32_t, std::vector<const Pattern*>> byStart_;
  std::array<bool, 0x10000> mayStart_{};
};

bool HeadIs(std::string_view bytes, std::size_t offset, std::size_t unit, std::string_view head) {
  return bytes.substr(offset - offset % unit, head.size()) == head;
}

std::string LabelOf(std::size_t offset, const std::vector<Region>& regions, Layout layout,
                    std::string_view bytes) {
  for (const Region& region : regions) {
    if (offset >= region.first && offset <= region.last) return region.label;
  }
  if (layout == Layout::Ntfs) {
    if (HeadIs(bytes, offset, 1024, "FILE")) return "record";
    if (HeadIs(bytes, offset, 4096, "INDX")) return "folder";
    if (HeadIs(bytes, offset, 4096, "RCRD")) return "journal";
  }
  // FAT has neither journal nor records: a name can only stand in the clusters of a folder.
  if (layout == Layout::Fat) return "folder";
  return "elsewhere";
}

std::vector<Pattern> ReadMarks(const char* path) {
  std::vector<Pattern> patterns;
  std::ifstream lines(path);
  std::string kind;
  std::string mark;
  while (lines >> kind >> mark) {
    if (kind == "content" && mark.size() == 16) {
      patterns.push_back({mark, "content", mark});
    } else if (kind == "name" && mark.size() >= 8 && (mark.size() >= 12 || mark == Capitals(mark))) {
      AddName(mark, patterns);
    } else {
      std::fprintf(stderr, "find_marks: '%s %s' is no mark\n", kind.c_str(), mark.c_str());
      std::exit(2);
    }
  }
  if (patterns.empty()) {
    std::fprintf(stderr, "find_marks: %s holds no marks\n", path);
    std::exit(2);
  }
  return patterns;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: find_marks IMAGE MARKS [--ntfs | --fat] [--region LABEL FIRST LAST]...\n");
    return 2;
  }
  Layout layout = Layout::Plain;
  std::vector<Region> regions;
  for (int i = 3; i < argc; ++i) {
    if (std::strcmp(argv[i], "--ntfs") == 0) {
      layout = Layout::Ntfs;
    } else if (std::strcmp(argv[i], "--fat") == 0) {
      layout = Layout::Fat;
    } else if (std::strcmp(argv[i], "--region") == 0 && i + 3 < argc) {
      regions.push_back(
          {argv[i + 1], std::strtoull(argv[i + 2], nullptr, 10), std::strtoull(argv[i + 3], nullptr, 10)});
      i += 3;
    } else {
      std::fprintf(stderr, "find_marks: %s?\n", argv[i]);
      return 2;
    }
  }

  const std::vector<Pattern> patterns = ReadMarks(argv[2]);
  const Image image(argv[1]);
  const std::string_view bytes = image.Bytes();
  std::map<std::string, std::set<std::size_t>> sectors;  // by label, those with content
  std::map<std::string, std::size_t> last;               // by mark, where its name was found last
  const auto found = [&](std::size_t offset, const Pattern& pattern) {
    const std::string label = LabelOf(offset, regions, layout, bytes);
    if (std::strcmp(pattern.form, "content") == 0) {
      sectors[label].insert(offset / kSectorBytes);
      return;
    }
    // The pieces of one name, and the forms that are alike in some place, are one finding.
    constexpr std::size_t kNear = 26;
    const auto before = last.find(pattern.mark);
    if (before != last.end() && offset - before->second < kNear) return;
    last[pattern.mark] = offset;
    std::printf("name %s %s %zu %s\n", pattern.form, label.c_str(), offset, pattern.mark.c_str());
  };
  const Finder finder(patterns);
  for (const Image::Range& range : image.Data()) finder.Search(bytes, range.first, range.end, found);
  for (const auto& [label, numbers] : sectors) std::printf("content %s %zu\n", label.c_str(), numbers.size());
  return 0;
}
