#include "controls/document/PrintPages.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zq {

PrintOutcome PrintPages(PrinterDevice& printer, const std::vector<int>& pages) {
  const auto failure = [&printer] {
    return printer.Cancelled() ? PrintOutcome::Cancelled : PrintOutcome::Failed;
  };
  if (!printer.StartDocument()) return failure();
  for (const int page : pages) {
    printer.NowPrinting(page);
    bool printed = !printer.Cancelled() && printer.StartPage();
    if (printed) {
      printer.DrawPage(page);
      printed = printer.EndPage();
    }
    if (!printed || printer.Cancelled()) {
      const PrintOutcome outcome = failure();
      printer.Abort();
      return outcome;
    }
  }
  return printer.EndDocument() ? PrintOutcome::Done : failure();
}

std::vector<int> PagesToPrint(int first, int last, int count, int copies, bool collated) {
  if (first > last) std::swap(first, last);
  first = std::clamp(first, 1, std::max(count, 1));
  last = std::clamp(last, first, std::max(count, 1));
  copies = std::max(copies, 1);
  std::vector<int> pages;
  if (collated) {
    for (int copy = 0; copy < copies; ++copy) {
      for (int page = first; page <= last; ++page) pages.push_back(page - 1);
    }
  } else {
    for (int page = first; page <= last; ++page)
      pages.insert(pages.end(), static_cast<std::size_t>(copies), page - 1);
  }
  return pages;
}

}  // namespace zq
