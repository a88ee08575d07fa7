// Fakes of the windows that logic talks to: each call is a line in the log.
#pragma once

#include <string>

#include "core/state/MainWindow.h"
#include "support/fakes/EventLog.h"
#include "wipe/FreeSpaceProgress.h"
#include "wipe/JobWipe.h"
#include "wipe/WipeProgress.h"

namespace zq::test {

class FakeMainWindow final : public MainWindow {
 public:
  explicit FakeMainWindow(EventLog& log) : log_(log) {}
  void Show() override { log_.push_back("main: show"); }
  void Hide() override { log_.push_back("main: hide"); }
  void SetGridLines(bool gridLines) override {
    log_.push_back(gridLines ? "main: grid lines" : "main: no grid lines");
  }
  void SetVisualStyle(int visualStyle) override {
    log_.push_back("main: visual style " + std::to_string(visualStyle));
  }

 private:
  EventLog& log_;
};

class FakeStatusWindow final : public WipeStatusWindow {
 public:
  explicit FakeStatusWindow(EventLog& log) : log_(log) {}
  void Show() override { log_.push_back("status: show"); }
  void Unload() override { log_.push_back("status: unload"); }
  void SetCancelEnabled(bool enabled) override {
    log_.push_back(enabled ? "status: cancel on" : "status: cancel off");
  }
  void SetStatus(const std::string& text) override { log_.push_back("status: text " + text); }
  void Repaint() override { log_.push_back("status: repaint"); }
  void SetCurrent(int percent) override { log_.push_back("status: current " + std::to_string(percent)); }
  void SetOverall(int percent) override { log_.push_back("status: overall " + std::to_string(percent)); }
  void SetCaption(const std::string& text) override { log_.push_back("status: caption " + text); }

 private:
  EventLog& log_;
};

class FakeFreeSpaceStatusWindow final : public FreeSpaceStatusWindow {
 public:
  explicit FakeFreeSpaceStatusWindow(EventLog& log) : log_(log) {}
  void Show() override { log_.push_back("space: show"); }
  void Unload() override { log_.push_back("space: unload"); }
  void SetStatus(const std::string& text) override { log_.push_back("space: text " + text); }
  void SetCurrent(int percent) override { log_.push_back("space: current " + std::to_string(percent)); }
  void SetCaption(const std::string& text) override { log_.push_back("space: caption " + text); }

 private:
  EventLog& log_;
};

class FakeReportViewer final : public ReportViewer {
 public:
  explicit FakeReportViewer(EventLog& log) : log_(log) {}
  void Load() override { log_.push_back("report: load"); }
  void ShowModal() override { log_.push_back("report: show"); }

 private:
  EventLog& log_;
};

}  // namespace zq::test
