// VSPrinter's printing: the system's print dialog, and what is told when it fails.
#include <windows.h>
#include <cderr.h>
#include <commdlg.h>
#include <winspool.h>

#include <algorithm>
#include <memory>

#include "controls/VSPrinter.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr const char* kNoPrinter =
    "There is no printer that the report could be printed on.  Add a printer in Windows' settings, and print "
    "again.";

// A locked block of memory that the dialog has given out.
template <class Content>
class Locked {
 public:
  explicit Locked(const UniqueGlobalMemory& memory)
      : memory_(memory.Get()),
        content_(memory_ ? static_cast<const Content*>(::GlobalLock(memory_)) : nullptr) {}
  ~Locked() {
    if (content_) ::GlobalUnlock(memory_);
  }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
  const Content* operator->() const { return content_; }
  const Content* Get() const { return content_; }

 private:
  HGLOBAL memory_;
  const Content* content_;
};

std::string TextOfSystemError(DWORD error) {
  wchar_t* text = nullptr;
  const DWORD length = ::FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
      error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::string result = length == 0 ? "" : FromWide({text, length});
  ::LocalFree(text);
  while (!result.empty() && (result.back() == '\n' || result.back() == '\r' || result.back() == ' '))
    result.pop_back();
  return result;
}

// False where the printer has none, or the user wants none.
bool KnowsColours(const PrintOrder& order, const DEVMODEW* mode) {
  if (mode && (mode->dmFields & DM_COLOR) && mode->dmColor == DMCOLOR_MONOCHROME) return false;
  if (::DeviceCapabilitiesW(order.device.c_str(), order.port.c_str(), DC_COLORDEVICE, nullptr, mode) == 0)
    return false;
  return ::GetDeviceCaps(order.printer, BITSPIXEL) * ::GetDeviceCaps(order.printer, PLANES) > 1;
}

}  // namespace

void VSPrinter::PrintWithDialog() {
  // The dialog has a box of its own for this, which not every system leaves out when it is asked to.
  if (!HasPrinter()) {
    if (PrintFailed) PrintFailed(kNoPrinter);
    return;
  }
  PRINTDLGW dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = form().Handle();
  dialog.Flags = PD_ALLPAGES | PD_NOSELECTION | PD_RETURNDC | PD_USEDEVMODECOPIESANDCOLLATE | PD_NOWARNING;
  dialog.nMinPage = 1;
  dialog.nMaxPage = static_cast<WORD>(std::min<std::size_t>(layout_.pages.size(), 0xFFFF));
  dialog.nFromPage = 1;
  dialog.nToPage = dialog.nMaxPage;
  dialog.nCopies = 1;
  const BOOL chosen = ::PrintDlgW(&dialog);
  const DWORD error = chosen ? 0 : ::CommDlgExtendedError();
  const UniqueGlobalMemory modeMemory(dialog.hDevMode);
  const UniqueGlobalMemory namesMemory(dialog.hDevNames);
  const UniqueDc printer(dialog.hDC);
  if (!chosen && error == 0) return;  // the user has changed his mind
  if (!chosen || !printer) {
    const bool none = error == PDERR_NODEFAULTPRN || error == PDERR_NODEVICES;
    if (PrintFailed)
      PrintFailed(none ? kNoPrinter
                       : "The printer could not be opened, error " + std::to_string(error) + ".");
    return;
  }

  PrintOrder order;
  order.printer = printer.Get();
  const bool range = (dialog.Flags & PD_PAGENUMS) != 0;
  order.firstPage = range ? dialog.nFromPage : 1;
  order.lastPage = range ? dialog.nToPage : 0x7FFFFFFF;
  order.copies = dialog.nCopies;
  order.collated = (dialog.Flags & PD_COLLATE) != 0;
  {
    const Locked<DEVMODEW> mode(modeMemory);
    const Locked<DEVNAMES> names(namesMemory);
    if (names.Get()) {
      const auto* base = reinterpret_cast<const wchar_t*>(names.Get());
      order.device = base + names->wDeviceOffset;
      order.port = base + names->wOutputOffset;
      // The dialog's box "Print to file" comes as this port: the driver asks for the name.
      if (dialog.Flags & PD_PRINTTOFILE) order.output = L"FILE:";
    }
    order.colours = KnowsColours(order, mode.Get());
  }
  PrintTo(order);
}

PrintOutcome VSPrinter::PrintTo(const PrintOrder& order) {
  UsePaper(PaperOf(order.printer));
  DWORD systemError = 0;
  const PrintOutcome outcome =
      PrintDocument(form().Handle(), order, Content(), layout_, measure_, systemError);
  if (outcome == PrintOutcome::Failed && PrintFailed) {
    std::string text = "The report was not printed completely.";
    if (systemError != 0)
      text += "  Printing on " + FromWide(order.device) + " failed with error " +
              std::to_string(systemError) + ": " + TextOfSystemError(systemError);
    PrintFailed(text);
  }
  return outcome;
}

}  // namespace zq
