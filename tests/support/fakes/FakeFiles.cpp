#include "support/fakes/FakeFiles.h"

#include <algorithm>
#include <utility>

#include "platform/Like.h"

namespace zq::test {
namespace {

std::string Folded(std::string text) {
  while (text.size() > 1 && text.back() == '\\') text.pop_back();
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return text;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('\\');
  return slash == std::string::npos ? "" : path.substr(0, slash);
}

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('\\') + 1);
}

}  // namespace

FakeFiles::Node& FakeFiles::AddFile(const std::string& path, const std::string& content,
                                    std::uint32_t attributes) {
  if (!FolderOf(path).empty() && !Find(FolderOf(path))) AddFolder(FolderOf(path));
  Delete(path);
  nodes_.push_back({path, attributes, content.size(), content});
  return nodes_.back();
}

FakeFiles::Node& FakeFiles::AddFileOfLength(const std::string& path, std::uint64_t length) {
  Node& node = AddFile(path);
  node.length = length;
  return node;
}

FakeFiles::Node& FakeFiles::AddFolder(const std::string& path, std::uint32_t attributes) {
  const std::string parent = FolderOf(path);
  if (!parent.empty() && !Find(parent)) AddFolder(parent);
  nodes_.push_back({path, attributes, 0, {}});
  return nodes_.back();
}

void FakeFiles::Delete(const std::string& path) {
  std::erase_if(nodes_, [&](const Node& node) { return Folded(node.path) == Folded(path); });
}

const FakeFiles::Node* FakeFiles::Find(const std::string& path) const {
  const auto found = std::find_if(nodes_.begin(), nodes_.end(),
                                  [&](const Node& node) { return Folded(node.path) == Folded(path); });
  return found == nodes_.end() ? nullptr : &*found;
}

FakeFiles::Node* FakeFiles::Find(const std::string& path) {
  return const_cast<Node*>(std::as_const(*this).Find(path));
}

std::vector<FileEntry> FakeFiles::Matches(const std::string& pattern) const {
  std::vector<FileEntry> entries;
  if (failEverything || pattern.empty() || pattern.back() == '\\') return entries;
  const std::string folder = Folded(FolderOf(pattern));
  std::string name = Folded(NameOf(pattern));
  if (name == "*.*") name = "*";  // the system's rule for this one pattern
  if (name == "*" && Exists(folder)) {
    entries.push_back({".", kAttributeDirectory, 0, 0});
    entries.push_back({"..", kAttributeDirectory, 0, 0});
  }
  for (const Node& node : nodes_) {
    if (Folded(FolderOf(node.path)) != folder || !Like(Folded(NameOf(node.path)), name)) continue;
    entries.push_back({NameOf(node.path), node.attributes, static_cast<std::uint32_t>(node.length >> 32),
                       static_cast<std::uint32_t>(node.length)});
  }
  return entries;
}

std::optional<FileEntry> FakeFiles::FindEntry(const std::string& pattern) {
  const std::vector<FileEntry> entries = Matches(pattern);
  if (entries.empty()) return std::nullopt;
  return entries.front();
}

ListEnd FakeFiles::List(const std::string& pattern, const std::function<void(const FileEntry&)>& visit) {
  if (failEverything) return ListEnd::BrokenOff;
  const std::vector<FileEntry> entries = Matches(pattern);
  int handedOver = 0;
  for (const FileEntry& entry : entries) {
    if (handedOver++ == listingBreaksAfter) return ListEnd::BrokenOff;
    visit(entry);
  }
  return entries.empty() ? ListEnd::NothingFound : ListEnd::Complete;
}

std::optional<std::uint32_t> FakeFiles::Attributes(const std::string& path) {
  const Node* node = failEverything ? nullptr : Find(path);
  if (!node) return std::nullopt;
  return node->attributes;
}

bool FakeFiles::SetAttributes(const std::string& path, std::uint32_t attributes) {
  log.push_back("attributes " + path + " " + std::to_string(attributes));
  Node* node = Find(path);
  if (failEverything || !node || keepAttributes.contains(path)) return false;
  node->attributes = attributes | (node->attributes & kAttributeDirectory);
  return true;
}

bool FakeFiles::MakeFolder(const std::string& path) {
  log.push_back("folder " + path);
  if (failEverything || Exists(path)) return false;
  AddFolder(Folded(path) == path ? path : path.substr(0, Folded(path).size()));
  return true;
}

bool FakeFiles::Remove(const std::string& path) {
  log.push_back("remove " + path);
  if (failEverything || !Exists(path)) return false;
  Delete(path);
  return true;
}

std::string FakeFiles::Read(const std::string& path) {
  const Node* node = Find(path);
  if (!node || (node->attributes & kAttributeDirectory)) throw RunTimeError(ErrorNumber::FileNotFound);
  if (failEverything || unreadable.contains(path)) throw RunTimeError(ErrorNumber::PermissionDenied);
  return node->content;
}

void FakeFiles::Write(const std::string& path, const std::string& bytes) {
  log.push_back("write " + path);
  Put(path, bytes);
}

void FakeFiles::WriteRecord(const std::string& path, const std::string& bytes) {
  log.push_back("record " + path);
  Put(path, bytes);
}

void FakeFiles::Put(const std::string& path, const std::string& bytes) {
  if (failEverything || unwritable.contains(path)) throw RunTimeError(ErrorNumber::PathFileAccessError);
  if (!Exists(FolderOf(path))) throw RunTimeError(ErrorNumber::PathNotFound);
  if (Node* node = Find(path)) {
    if (node->attributes & (kAttributeReadOnly | kAttributeDirectory))
      throw RunTimeError(ErrorNumber::PathFileAccessError);
    node->content = bytes;
    node->length = bytes.size();
    return;
  }
  AddFile(path, bytes);
}

}  // namespace zq::test
