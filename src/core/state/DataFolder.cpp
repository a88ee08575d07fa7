#include "core/state/DataFolder.h"

#include "core/state/AppState.h"
#include "core/state/ItemExists.h"

namespace zq {

std::string DataFolder::PathOf(const std::string& name) const {
  return state_.AppFolder + name;
}

bool DataFolder::HasFile(const std::string& name) const {
  return ItemExists(files_, kItemIsFile, PathOf(name));
}

bool DataFolder::HasFolder(const std::string& name) const {
  return ItemExists(files_, kItemIsFolder, PathOf(name));
}

std::optional<FileEntry> DataFolder::FindEntry(const std::string& name) const {
  return files_.FindEntry(PathOf(name));
}

std::string DataFolder::Read(const std::string& name) const {
  return files_.Read(PathOf(name));
}

void DataFolder::Write(const std::string& name, const std::string& bytes) const {
  files_.Write(PathOf(name), bytes);
}

void DataFolder::WriteRecord(const std::string& name, const std::string& bytes) const {
  files_.WriteRecord(PathOf(name), bytes);
}

bool DataFolder::MakeFolder(const std::string& name) const {
  return files_.MakeFolder(PathOf(name));
}

bool DataFolder::Remove(const std::string& name) const {
  return files_.Remove(PathOf(name));
}

}  // namespace zq
