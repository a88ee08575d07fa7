// PrintPages: the order of a print job, page by page, and how it ends.
#pragma once

#include <vector>

namespace zq {

// A printer that has been chosen. Each step is false when the printer, or the user, ends the job.
class PrinterDevice {
 public:
  virtual ~PrinterDevice() = default;
  virtual bool StartDocument() = 0;
  virtual bool StartPage() = 0;
  virtual void DrawPage(int page) = 0;  // from 0
  virtual bool EndPage() = 0;
  virtual bool EndDocument() = 0;
  // Throws away what has been printed and not come out yet. Called once at most, after StartDocument.
  virtual void Abort() = 0;

  // Told before each page, and the place where a press of Cancel gets through.
  virtual void NowPrinting(int page) = 0;
  virtual bool Cancelled() = 0;
};

enum class PrintOutcome { Done, Cancelled, Failed };

PrintOutcome PrintPages(PrinterDevice& printer, const std::vector<int>& pages);

// The pages in the order in which they go to the printer: `first` to `last` counted from 1 as the user gives
// them, brought into the document's `count`, in so many copies; a copy at a time if they are collated, else
// each page so many times.
std::vector<int> PagesToPrint(int first, int last, int count, int copies, bool collated);

}  // namespace zq
