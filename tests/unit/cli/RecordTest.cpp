#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Record.h"
#include "cli/Reports.h"
#include "unit/engine/EngineRig.h"

namespace zq::cli {
namespace {

using engine::StorageInfo;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const StoredOn kFlash{"/a", {StorageInfo::Kind::Flash, true, "Brand 500", "S42"}};
const StoredOn kDisk{"/b", {StorageInfo::Kind::Rotating, false, "Turner", ""}};
const StoredOn kUnknown{"/c", {}};
const StoredOn kMemory{"/d", {StorageInfo::Kind::Memory, false, "", ""}};

std::string Written(const Record& record, std::int32_t level = 3) {
  JsonWriter json;
  json.BeginObject();
  WriteRecord(json, record, level);
  json.EndObject();
  return json.Text();
}

TEST(Record, HasWhatARecordOfAnErasureNeeds) {
  const Record record{"2026-11-01T09:30:00Z", 75, true, {kFlash}};
  EXPECT_EQ(Written(record, 5),
            R"({"started": "2026-11-01T09:30:00Z", "seconds": 75, "passes": 15, "verified": true, )"
            R"("method": "Clear", "device": {"path": "/a", "kind": "flash", "model": "Brand 500", )"
            R"("serial": "S42", "choosesPlaces": true}, "devices": [{"path": "/a", "kind": "flash", )"
            R"("model": "Brand 500", "serial": "S42", "choosesPlaces": true}]})");
}

TEST(Record, SaysNothingOfATimeThatNeverWas) {
  EXPECT_EQ(Written({}), R"({"passes": 9, "verified": false, "method": "Clear"})");
}

TEST(Record, NamesTheDeviceThatOverwritingReachesLeast) {
  const auto device = [](std::vector<StoredOn> devices) {
    const std::string text = Written({"now", 1, true, std::move(devices)});
    const std::size_t start = text.find("\"kind\": \"") + 9;
    return text.substr(start, text.find('"', start) - start);
  };
  EXPECT_EQ(device({kDisk, kUnknown, kFlash, kMemory}), "flash");
  EXPECT_EQ(device({kDisk, kUnknown, kMemory}), "unknown");
  EXPECT_EQ(device({kDisk, kMemory}), "memory");
  EXPECT_EQ(device({kDisk}), "disk");
}

TEST(Record, WarnsOfFlashAndOfWhatMayBeFlash) {
  EXPECT_THAT(
      DeviceWarnings({"now", 1, true, {kDisk, kFlash, kUnknown, kMemory}}),
      ElementsAre(
          "Flash memory: the device under /a (Brand 500, serial S42) chooses by itself where it writes; "
          "old copies that it keeps aside can't be reached.",
          "It isn't known whether the device under /c chooses by itself where it writes, as flash "
          "memory does; old copies may be left in it."));
  EXPECT_THAT(DeviceWarnings({"now", 1, true, {kDisk, kMemory}}), IsEmpty());
}

TEST(Record, ShowsWhatADeviceSaysOfItselfHarmlessly) {
  const StoredOn odd{"/a\n", {StorageInfo::Kind::Flash, true, "\x1B[2J", "\xFF"}};
  const std::string line = DeviceWarnings({"now", 1, true, {odd}}).at(0);
  EXPECT_THAT(line, HasSubstr("under /a\\n (\\x1B[2J, serial \\xFF)"));
}

TEST(Record, AsksADeviceOnceForAllThatLiesOnIt) {
  engine::test::FakeClock clock;
  engine::test::FakeDevice device(clock);
  device.MakeFolder("/one");
  device.MakeFolder("/two");
  device.storage = kFlash.storage;
  Record record;
  AddDevice(record, device, "/one");
  AddDevice(record, device, "/two");
  ASSERT_THAT(record.devices, SizeIs(1));
  EXPECT_EQ(record.devices[0].path, "/one");
  EXPECT_EQ(record.devices[0].storage.model, "Brand 500");
  AddDevice(record, device, "/missing");
  ASSERT_THAT(record.devices, SizeIs(2));
  EXPECT_EQ(record.devices[1].storage.kind, StorageInfo::Kind::Unknown);
  EXPECT_EQ(device.openHandles, 0);
}

TEST(Record, StandsInTheReportsOfFilesToo) {
  const Options options;
  const Plan plan;
  const RunResult result;
  Finished finished{options, plan, result, ExitCode::AllGone, "now", {"then", 2, true, {kFlash}}};
  EXPECT_THAT(JsonReport(finished), HasSubstr(R"("operation": "files")"));
  EXPECT_THAT(JsonReport(finished), HasSubstr(R"("started": "then", "seconds": 2, "passes": 9,)"));
  EXPECT_THAT(JsonReport(finished), HasSubstr(R"("device": {"path": "/a", "kind": "flash")"));
  EXPECT_THAT(TextReport(finished), HasSubstr("note   Flash memory: the device under /a"));
  Options dry;
  dry.dryRun = true;
  EXPECT_THAT(TextReport({dry, plan, result, ExitCode::AllGone, "now", {"", 0, false, {kFlash}}}),
              Not(HasSubstr("Flash memory")));
}

}  // namespace
}  // namespace zq::cli
