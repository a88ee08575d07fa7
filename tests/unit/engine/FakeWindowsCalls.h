// Windows as far as it decides whether a file is destroyed: one file in one folder, with the answers that a
// test wants, and a record of what was asked.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "engine/WindowsCalls.h"

namespace zq::engine::test {

class FakeWindowsCalls final : public win32::WindowsCalls {
 public:
  using Code = win32::Code;
  using SystemHandle = win32::SystemHandle;

  // --- what a test sets up ---
  std::uint32_t attributes = win32::kAttributeNormal;
  std::uint32_t reparseTag = 0;
  std::wstring finalPath = L"\\\\?\\C:\\folder\\file";
  Code finalPathFails = win32::kSuccess;
  Code externalBacking = win32::kNotExternallyBacked;
  std::uint32_t extendedAttributeBytes = 0;
  std::vector<Code> opensFail;    // the next openings, by path and by handle, fail with these
  std::vector<Code> removesFail;  // the next removals
  std::vector<Code> existsSays;   // then kFileNotFound
  // (next cluster of the file, cluster of the volume) in the answers to kGetRetrievalPointers, one vector for
  // each call; the last call's code is kSuccess, or this.
  std::vector<std::vector<std::pair<std::int64_t, std::int64_t>>> extents;
  Code extentsEndWith = win32::kSuccess;
  std::vector<std::vector<std::array<std::int64_t, 2>>> ranges;  // the same of kQueryAllocatedRanges
  Code rangesEndWith = win32::kSuccess;
  Code markFails = win32::kSuccess;
  // All other control codes: fills the answer, and returns how it ended.
  std::function<Code(std::uint32_t control, std::span<const std::byte> input, std::vector<std::byte>& answer)>
      otherControls;

  // --- what it looks at ---
  std::vector<std::string> story;
  std::chrono::milliseconds waited{0};
  int open = 0;
  win32::Opening lastOpening;
  std::wstring lastPath;
  std::vector<std::byte> lastMark;

  Code Open(const std::wstring& path, const win32::Opening& how, SystemHandle& handle) override {
    lastPath = path;
    return OpenAs(how.disposition == win32::kCreateNew ? "create" : "open", how, handle);
  }
  Code Reopen(SystemHandle, const win32::Opening& how, SystemHandle& again) override {
    return OpenAs("reopen", how, again);
  }
  void Close(SystemHandle) override {
    story.push_back("close");
    --open;
  }
  Code FinalPath(SystemHandle, std::uint32_t, std::wstring& path) override {
    story.push_back("final path");
    path = finalPath;
    return finalPathFails;
  }
  Code Identity(SystemHandle, FileId& id) override {
    id = {1, {2, 3}};
    return win32::kSuccess;
  }
  Code Look(SystemHandle, std::uint32_t& theAttributes, std::uint32_t& tag) override {
    story.push_back("look");
    theAttributes = attributes;
    tag = reparseTag;
    return win32::kSuccess;
  }
  Code SetAttributes(SystemHandle, std::uint32_t wanted) override {
    story.push_back((wanted & win32::kAttributeReadOnly) != 0 ? "set read-only" : "clear read-only");
    attributes = wanted;
    return win32::kSuccess;
  }
  Code ExtendedAttributes(SystemHandle, std::uint32_t& sizeBytes) override {
    story.push_back("extended attributes");
    sizeBytes = extendedAttributeBytes;
    return win32::kSuccess;
  }
  Code Control(SystemHandle, std::uint32_t control, std::span<const std::byte> input,
               std::span<std::byte> output, std::size_t& gotBytes) override {
    gotBytes = 0;
    switch (control) {
      case win32::kGetExternalBacking:
        story.push_back("external backing");
        return externalBacking;
      case win32::kMarkHandle:
        story.push_back("mark");
        lastMark.assign(input.begin(), input.end());
        return markFails;
      case win32::kGetRetrievalPointers:
        return Extents(input, output, gotBytes);
      case win32::kQueryAllocatedRanges:
        return Ranges(output, gotBytes);
      default:
        if (otherControls) return Other(control, input, output, gotBytes);
        ADD_FAILURE() << "control code " << control;
        return win32::kInvalidFunction;
    }
  }
  Code Remove(SystemHandle, bool atOnce) override {
    story.push_back(atOnce ? "remove at once" : "remove");
    return Next(removesFail);
  }
  Code Exists(const std::wstring&) override {
    if (existsSays.empty()) return win32::kFileNotFound;
    return Next(existsSays);
  }
  void Wait(std::chrono::milliseconds time) override { waited += time; }
  Status StatusOf(Code code) override {
    return {Trouble::Other, static_cast<std::int32_t>(code), "code " + std::to_string(code)};
  }

 private:
  Code Other(std::uint32_t control, std::span<const std::byte> input, std::span<std::byte> output,
             std::size_t& gotBytes) {
    std::vector<std::byte> answer;
    const Code code = otherControls(control, input, answer);
    gotBytes = std::min(answer.size(), output.size());
    std::copy_n(answer.begin(), gotBytes, output.begin());
    return code;
  }
  static Code Next(std::vector<Code>& codes) {
    if (codes.empty()) return win32::kSuccess;
    const Code code = codes.front();
    codes.erase(codes.begin());
    return code;
  }
  Code OpenAs(std::string kind, const win32::Opening& how, SystemHandle& handle) {
    if ((how.access & win32::kGenericWrite) != 0) {
      kind += " to write";
    } else {
      kind += (how.access & win32::kWriteAttributes) != 0 ? " to set" : " to look";
    }
    story.push_back(kind);
    lastOpening = how;
    const Code code = Next(opensFail);
    if (code != win32::kSuccess) return code;
    handle = &open;
    ++open;
    return code;
  }
  Code Extents(std::span<const std::byte> input, std::span<std::byte> output, std::size_t& gotBytes) {
    story.push_back("extents");
    std::int64_t start = 0;
    std::memcpy(&start, input.data(), sizeof start);
    if (extents.empty()) return extentsEndWith;
    const auto part = extents.front();
    extents.erase(extents.begin());
    const auto count = static_cast<std::uint32_t>(part.size());
    std::memcpy(output.data(), &count, sizeof count);
    std::memcpy(output.data() + 8, &start, sizeof start);
    gotBytes = 16;
    for (const auto& [next, place] : part) {
      std::memcpy(output.data() + gotBytes, &next, sizeof next);
      std::memcpy(output.data() + gotBytes + 8, &place, sizeof place);
      gotBytes += 16;
    }
    return extents.empty() ? extentsEndWith : win32::kMoreData;
  }
  Code Ranges(std::span<std::byte> output, std::size_t& gotBytes) {
    story.push_back("ranges");
    if (ranges.empty()) return rangesEndWith;
    const auto part = ranges.front();
    ranges.erase(ranges.begin());
    for (const std::array<std::int64_t, 2>& range : part) {
      std::memcpy(output.data() + gotBytes, range.data(), sizeof range);
      gotBytes += sizeof range;
    }
    return ranges.empty() ? rangesEndWith : win32::kMoreData;
  }
};

}  // namespace zq::engine::test
