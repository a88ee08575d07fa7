#include "cli/Record.h"

#include <algorithm>
#include <memory>

#include "cli/Shown.h"
#include "engine/PassPlan.h"

namespace zq::cli {
namespace {

using Kind = engine::StorageInfo::Kind;

const char* KindText(Kind kind) {
  switch (kind) {
    case Kind::Rotating:
      return "disk";
    case Kind::Flash:
      return "flash";
    case Kind::Memory:
      return "memory";
    case Kind::Unknown:
      break;
  }
  return "unknown";
}

// Which of two devices is the worse one for who wants to destroy.
int Reach(Kind kind) {
  switch (kind) {
    case Kind::Flash:
      return 0;
    case Kind::Unknown:
      return 1;
    case Kind::Memory:
      return 2;
    case Kind::Rotating:
      break;
  }
  return 3;
}

void WriteDevice(JsonWriter& json, const StoredOn& device) {
  json.BeginObject();
  json.Member("path", device.path);
  json.Member("kind", KindText(device.storage.kind));
  if (!device.storage.model.empty()) json.Member("model", device.storage.model);
  if (!device.storage.serial.empty()) json.Member("serial", device.storage.serial);
  json.Member("choosesPlaces", device.storage.ChoosesPlaces());
  json.EndObject();
}

// "The device under d (Brand 500, serial 42)"
std::string NameOf(const StoredOn& device) {
  std::string text = "the device under " + Shown(device.path);
  const auto& [kind, trims, model, serial] = device.storage;
  if (model.empty() && serial.empty()) return text;
  text += " (" + Shown(model);
  if (!serial.empty()) text += (model.empty() ? "serial " : ", serial ") + Shown(serial);
  return text + ')';
}

}  // namespace

void AddDevice(Record& record, engine::Device& device, const std::string& path) {
  StoredOn found{path, {}};
  std::unique_ptr<engine::Folder> folder;
  if (device.OpenFolder(path, folder).Ok()) folder->Storage(found.storage);
  const bool isKnown = std::ranges::any_of(record.devices, [&](const StoredOn& other) {
    return other.storage.kind == found.storage.kind && other.storage.model == found.storage.model &&
           other.storage.serial == found.storage.serial;
  });
  if (!isKnown) record.devices.push_back(std::move(found));
}

void WriteRecord(JsonWriter& json, const Record& record, std::int32_t level) {
  if (!record.started.empty()) json.Member("started", record.started);
  if (!record.started.empty()) json.Member("seconds", record.seconds);
  json.Member("passes", std::uint64_t{engine::PassesOfLevel(level).size()});
  json.Member("verified", record.verified);
  json.Member("method", "Clear");
  if (record.devices.empty()) return;
  json.Key("device");
  WriteDevice(json, *std::ranges::min_element(record.devices, {}, [](const StoredOn& device) {
                return Reach(device.storage.kind);
              }));
  json.Key("devices");
  json.BeginArray();
  for (const StoredOn& device : record.devices) WriteDevice(json, device);
  json.EndArray();
}

std::vector<std::string> DeviceWarnings(const Record& record) {
  std::vector<std::string> lines;
  for (const StoredOn& device : record.devices) {
    if (device.storage.kind == Kind::Flash) {
      lines.push_back("Flash memory: " + NameOf(device) +
                      " chooses by itself where it writes; old copies that it keeps aside can't be reached.");
    } else if (device.storage.ChoosesPlaces()) {
      lines.push_back(
          "It isn't known whether " + NameOf(device) +
          " chooses by itself where it writes, as flash memory does; old copies may be left in it.");
    }
  }
  return lines;
}

}  // namespace zq::cli
