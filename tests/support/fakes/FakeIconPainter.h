// FakeIconPainter: what the icon cache asks of the shell, as lines.
#pragma once

#include <cstdint>
#include <string>

#include "jobs/FileIcons.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeIconPainter final : public IconPainter {
 public:
  std::string windowsFolder = "C:\\WINDOWS";
  EventLog log;  // "measure .DOC 1", "draw .DOC 17", "add"

  std::string WindowsFolder() override { return windowsFolder; }
  void MeasureSmallIcon(const std::string& key, std::uint32_t flags) override {
    log.push_back("measure " + key + " " + std::to_string(flags));
  }
  void DrawFileIcon(const std::string& key, std::uint32_t flags) override {
    log.push_back("draw " + key + " " + std::to_string(flags));
  }
  void AddDrawnPicture() override { log.push_back("add"); }
};

}  // namespace zq::test
