// ReportViewer: the report window as those see it that show it.
#pragma once

namespace zq {

// The report window, where there is one. Loading a loaded window has no effect.
class ReportViewer {
 public:
  virtual ~ReportViewer() = default;
  virtual void Load() = 0;
  virtual void ShowModal() = 0;
};

}  // namespace zq
