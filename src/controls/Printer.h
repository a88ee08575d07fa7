// Printing of a document's pages by the system, and the paper that the printers have.
#pragma once

#include <windows.h>

#include <string>

#include "controls/document/PageLayout.h"
#include "controls/document/PrintPages.h"

namespace zq {

// What the user has chosen in the print dialog.
struct PrintOrder {
  HDC printer = nullptr;  // owned by the caller
  bool colours = true;
  int firstPage = 1;
  int lastPage = 1;
  int copies = 1;  // that the driver doesn't make itself
  bool collated = false;
  std::wstring device;
  std::wstring port;
  std::wstring output;  // a file in the place of the printer's port; "" for the port
};

bool HasPrinter();

// The page of a printer, or of the system's region where there is no printer.
PageSetup PaperOf(HDC printer);
PageSetup PaperOfDefaultPrinter();

// Prints behind a box with Cancel, which is modal to `owner`. `systemError` is the reason of a failure, 0
// where the printer tells none.
PrintOutcome PrintDocument(HWND owner, const PrintOrder& order, const Document& document,
                           const PageLayout& layout, TextMeasure& measure, DWORD& systemError);

}  // namespace zq
