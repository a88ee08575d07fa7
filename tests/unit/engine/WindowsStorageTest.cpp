// What a volume lies on, from answers of Windows made up byte for byte, as short and as false as they may
// come.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "engine/WindowsStorage.h"
#include "unit/engine/FakeWindowsCalls.h"

namespace zq::engine::test {
namespace {

using win32::Code;
using win32::StorageOf;
using Kind = StorageInfo::Kind;
using Bytes = std::vector<std::byte>;

constexpr std::uint32_t kDevice = 0;
constexpr std::uint32_t kSeekPenalty = 7;
constexpr std::uint32_t kTrim = 8;
constexpr std::uint32_t kUsb = 7;
constexpr std::uint32_t kSata = 11;

Bytes FromHex(const std::string& hex) {
  Bytes bytes;
  int high = -1;
  for (const char c : hex) {
    if (c == ' ') continue;
    const int digit = c <= '9' ? c - '0' : c - 'A' + 10;
    if (high < 0) {
      high = digit;
    } else {
      bytes.push_back(static_cast<std::byte>(high * 16 + digit));
      high = -1;
    }
  }
  return bytes;
}

void Put(Bytes& bytes, std::size_t offset, std::uint32_t number) {
  for (int i = 0; i < 4; ++i)
    bytes[offset + static_cast<std::size_t>(i)] = static_cast<std::byte>(number >> (8 * i));
}

// A device descriptor: 36 bytes of fields, then maker, product and serial number.
Bytes Descriptor(std::uint32_t bus, bool isRemovable, const std::string& vendor, const std::string& product,
                 const std::string& serial) {
  Bytes bytes = FromHex(
      "28 00 00 00  00 00 00 00  00 00 00 01  00 00 00 00"
      "00 00 00 00  00 00 00 00  00 00 00 00  00 00 00 00  00 00 00 00");
  bytes[10] = std::byte{isRemovable};
  Put(bytes, 28, bus);
  for (const auto& [field, text] : {std::pair{12u, vendor}, {16u, product}, {24u, serial}}) {
    if (text.empty()) continue;
    Put(bytes, field, static_cast<std::uint32_t>(bytes.size()));
    for (const char c : text) bytes.push_back(static_cast<std::byte>(c));
    bytes.push_back(std::byte{0});
  }
  Put(bytes, 4, static_cast<std::uint32_t>(bytes.size()));
  return bytes;
}

class WindowsStorage : public testing::Test {
 protected:
  WindowsStorage() {
    volume_.device = L"\\\\?\\Volume{1}";
    answers_[kDevice] = Descriptor(kSata, false, "", "Turner 4000", "T1");
    answers_[kSeekPenalty] = FromHex("0C 00 00 00  0C 00 00 00  01 00 00 00");
    answers_[kTrim] = FromHex("0C 00 00 00  0C 00 00 00  00 00 00 00");
    extents_ = FromHex(
        "01 00 00 00  00 00 00 00  02 00 00 00  00 00 00 00"
        "00 00 10 00  00 00 00 00  00 00 00 40  00 00 00 00");
    calls_.otherControls = [this](std::uint32_t control, std::span<const std::byte> input,
                                  Bytes& answer) -> Code {
      if (control == win32::kGetVolumeDiskExtents) {
        answer = extents_;
        return extentsEnd_;
      }
      EXPECT_EQ(control, win32::kStorageQueryProperty);
      EXPECT_EQ(input.size(), 12u);
      const auto property = static_cast<std::uint32_t>(input[0]);
      EXPECT_TRUE(std::all_of(input.begin() + 1, input.end(), [](std::byte b) { return b == std::byte{0}; }));
      const auto found = answers_.find(property);
      if (found == answers_.end()) return win32::kInvalidFunction;
      answer = found->second;
      return win32::kSuccess;
    };
  }
  StorageInfo Ask() {
    StorageInfo info = StorageOf(calls_, volume_);
    EXPECT_EQ(calls_.open, 0) << "the volume is left open";
    return info;
  }

  FakeWindowsCalls calls_;
  win32::Volume volume_;
  std::map<std::uint32_t, Bytes> answers_;
  Bytes extents_;
  Code extentsEnd_ = win32::kSuccess;
};

TEST_F(WindowsStorage, TellsADiskWithModelAndSerial) {
  const StorageInfo info = Ask();
  EXPECT_EQ(info.kind, Kind::Rotating);
  EXPECT_FALSE(info.trims);
  EXPECT_FALSE(info.ChoosesPlaces());
  EXPECT_EQ(info.model, "Turner 4000");
  EXPECT_EQ(info.serial, "T1");
}

TEST_F(WindowsStorage, OpensTheVolumeWithoutAnyRights) {
  Ask();
  EXPECT_EQ(calls_.lastPath, L"\\\\?\\Volume{1}");
  EXPECT_EQ(calls_.lastOpening.access, 0u);
  EXPECT_EQ(calls_.lastOpening.share, win32::kShareRead | win32::kShareWrite);
  EXPECT_EQ(calls_.lastOpening.disposition, win32::kOpenExisting);
  EXPECT_EQ(calls_.lastOpening.flags, 0u);
}

TEST_F(WindowsStorage, SeekingThatCostsNothingIsFlash) {
  answers_[kSeekPenalty][8] = std::byte{0};
  EXPECT_EQ(Ask().kind, Kind::Flash);
  answers_.erase(kDevice);
  answers_.erase(kTrim);
  EXPECT_EQ(Ask().kind, Kind::Flash) << "whatever else isn't told";
}

TEST_F(WindowsStorage, ABusOfFlashIsFlashWhateverItSaysOfSeeking) {
  for (const std::uint32_t bus : {12u, 13u, 17u, 18u, 19u}) {
    answers_[kDevice] = Descriptor(bus, false, "NVMe", "Brand 500", "S42");
    EXPECT_EQ(Ask().kind, Kind::Flash) << bus;
  }
  answers_.erase(kSeekPenalty);
  EXPECT_EQ(Ask().kind, Kind::Flash);
}

TEST_F(WindowsStorage, ADiskThatTakesTrimsIsNotBelieved) {
  answers_[kTrim][8] = std::byte{1};
  const StorageInfo info = Ask();
  EXPECT_EQ(info.kind, Kind::Unknown);
  EXPECT_TRUE(info.ChoosesPlaces());
  EXPECT_TRUE(info.trims);
}

TEST_F(WindowsStorage, WhatIsNotAnsweredIsUnknown) {
  for (const std::uint32_t property : {kDevice, kSeekPenalty, kTrim}) {
    const Bytes answer = std::exchange(answers_[property], {});
    EXPECT_EQ(Ask().kind, Kind::Unknown) << property << " is empty";
    answers_.erase(property);
    EXPECT_EQ(Ask().kind, Kind::Unknown) << property << " is refused";
    answers_[property] = answer;
  }
  EXPECT_EQ(Ask().kind, Kind::Rotating);
}

TEST_F(WindowsStorage, AShortAnswerIsNone) {
  for (const std::uint32_t property : {kDevice, kSeekPenalty, kTrim}) {
    const Bytes whole = answers_[property];
    // The truth value is the ninth byte; of the descriptor the fixed fields alone would do.
    const std::size_t needed = property == kDevice ? whole.size() : 9;
    for (std::size_t size = 0; size < needed; ++size) {
      answers_[property].assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      EXPECT_EQ(Ask().kind, Kind::Unknown) << property << ", " << size << " bytes, said to be more";
    }
    answers_[property] = whole;
  }
}

TEST_F(WindowsStorage, AnAnswerIsNoLongerThanItSays) {
  for (const std::uint32_t said : {0u, 7u, 8u, 0xFFFF'FFFFu}) {
    Put(answers_[kSeekPenalty], 4, said);
    EXPECT_EQ(Ask().kind, Kind::Unknown) << said;
  }
  Put(answers_[kSeekPenalty], 4, 9);
  EXPECT_EQ(Ask().kind, Kind::Rotating) << "the value is in it";
}

TEST_F(WindowsStorage, ATruthThatIsNeitherIsNone) {
  answers_[kSeekPenalty][8] = std::byte{2};
  EXPECT_EQ(Ask().kind, Kind::Unknown);
  answers_[kSeekPenalty][8] = std::byte{1};
  answers_[kTrim][8] = std::byte{0xFF};
  EXPECT_EQ(Ask().kind, Kind::Unknown);
  EXPECT_FALSE(Ask().trims);
}

TEST_F(WindowsStorage, ATextOutsideTheAnswerIsNone) {
  const Bytes whole = answers_[kDevice];
  const auto size = static_cast<std::uint32_t>(whole.size());
  // None, inside the fixed fields, at and behind the end, and what would overflow.
  for (const std::uint32_t place : {0u, 1u, 24u, 35u, size, size + 1, 4096u, 0x7FFF'FFFFu, 0xFFFF'FFFFu}) {
    Put(answers_[kDevice], 16, place);
    Put(answers_[kDevice], 24, place);
    const StorageInfo info = Ask();
    EXPECT_EQ(info.model, "") << place;
    EXPECT_EQ(info.serial, "") << place;
  }
  answers_[kDevice] = whole;
  answers_[kDevice].back() = std::byte{'X'};
  EXPECT_EQ(Ask().serial, "") << "it doesn't end in there";
  EXPECT_EQ(Ask().model, "Turner 4000");
}

TEST_F(WindowsStorage, ATextThatIsNotPlainIsNone) {
  for (const char* odd : {"T\x1B[2J", "T\xC3\xBC", "T\x7F"}) {
    answers_[kDevice] = Descriptor(kSata, false, "", "Turner 4000", odd);
    EXPECT_EQ(Ask().serial, "") << odd;
  }
}

TEST_F(WindowsStorage, TheModelIsMakerAndProductWithoutTheirPadding) {
  const auto model = [this](const char* vendor, const char* product) {
    answers_[kDevice] = Descriptor(kUsb, true, vendor, product, "");
    return Ask().model;
  };
  EXPECT_EQ(model("Maker   ", "  Stick 3.0      "), "Maker Stick 3.0");
  EXPECT_EQ(model("ATA     ", "Brand 500"), "Brand 500");
  EXPECT_EQ(model("NVMe", "Brand 500"), "Brand 500");
  EXPECT_EQ(model("Maker", ""), "Maker");
  EXPECT_EQ(model("", "   "), "");
}

TEST_F(WindowsStorage, OnlyAFixedDiskOfThisMachineIsBelievedToRotate) {
  for (std::uint32_t bus = 0; bus < 24; ++bus) {
    answers_[kDevice] = Descriptor(bus, false, "", "Turner 4000", "");
    const bool isDisk = bus == 2 || bus == 3 || bus == 10 || bus == 11;
    EXPECT_EQ(Ask().kind == Kind::Rotating, isDisk) << bus;
    answers_[kDevice] = Descriptor(bus, true, "", "Turner 4000", "");
    EXPECT_NE(Ask().kind, Kind::Rotating) << bus;
  }
}

TEST_F(WindowsStorage, TheDisksOfAVirtualMachineAreNotBelieved) {
  for (const char* model : {"QEMU HARDDISK", "VBOX HARDDISK", "VMware Virtual S", "Virtual HD"}) {
    answers_[kDevice] = Descriptor(kSata, false, "", model, "");
    EXPECT_EQ(Ask().kind, Kind::Unknown) << model;
  }
}

TEST_F(WindowsStorage, AVolumeOnSeveralDisksIsUnknown) {
  extents_[0] = std::byte{2};
  EXPECT_EQ(Ask().kind, Kind::Unknown);
  extentsEnd_ = win32::kMoreData;
  EXPECT_EQ(Ask().kind, Kind::Unknown);
  extents_[0] = std::byte{1};
  EXPECT_EQ(Ask().kind, Kind::Unknown);
  extentsEnd_ = win32::kSuccess;
  EXPECT_EQ(Ask().kind, Kind::Rotating);
  extents_.pop_back();
  EXPECT_EQ(Ask().kind, Kind::Unknown) << "a short answer";
}

TEST_F(WindowsStorage, WhatCannotBeOpenedIsUnknownAndANetworkIsNotAsked) {
  calls_.opensFail = {win32::kAccessDenied};
  EXPECT_EQ(Ask().kind, Kind::Unknown);
  calls_.story.clear();
  volume_.isRemote = true;
  EXPECT_EQ(Ask().kind, Kind::Unknown);
  volume_.isRemote = false;
  volume_.device.clear();
  EXPECT_EQ(Ask().kind, Kind::Unknown);
  EXPECT_TRUE(calls_.story.empty()) << "it was opened";
}

TEST(WindowsTrim, TellsTheDeviceOfTheWholeFile) {
  FakeWindowsCalls calls;
  Bytes asked;
  Bytes says = FromHex("01 00 00 00");
  Code ends = win32::kSuccess;
  calls.otherControls = [&](std::uint32_t control, std::span<const std::byte> input, Bytes& answer) {
    EXPECT_EQ(control, 0x00098208u);
    asked.assign(input.begin(), input.end());
    answer = says;
    return ends;
  };
  EXPECT_TRUE(win32::TrimFile(calls, nullptr, 0x1'2345'6000).Ok());
  EXPECT_EQ(asked, FromHex("00 00 00 00  01 00 00 00  00 00 00 00 00 00 00 00  00 60 45 23 01 00 00 00"));
  for (const char* answer : {"00 00 00 00", "01 00 00", "", "02 00 00 00"}) {
    says = FromHex(answer);
    EXPECT_EQ(win32::TrimFile(calls, nullptr, 4096).trouble, Trouble::Refused) << answer;
  }
  ends = win32::kNotSupported;
  EXPECT_EQ(win32::TrimFile(calls, nullptr, 4096).code, 50);
}

}  // namespace
}  // namespace zq::engine::test
