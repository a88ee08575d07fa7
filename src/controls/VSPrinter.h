// VSPrinter: makes a document, shows it, prints it and writes it to a file.
//
// The members that make the document are DocumentBuilder's. Its end lays the document out for the printer's
// paper, writes the export file and shows the first page. Paging, zoom, search, copying and printing are the
// control's own, and need no code of the form but the keys that it passes on.
#pragma once

#include <functional>
#include <string>

#include "controls/Control.h"
#include "controls/GdiTextMeasure.h"
#include "controls/PreviewBar.h"
#include "controls/PreviewWindow.h"
#include "controls/Printer.h"
#include "controls/document/DocumentBuilder.h"
#include "controls/document/PageLayout.h"

namespace zq {

class VSPrinter final : public Control, public DocumentBuilder {
 public:
  // Bound to a place in the template that holds a static control. `fold` takes the difference of case out
  // of a text, for the search.
  VSPrinter(Form& form, int id, FoldCase fold);
  ~VSPrinter() override;

  // In per cent; 100 is the size on paper.
  void SetZoom(double percent) { preview_.SetZoom(ZoomMode::Percent, percent); }
  double Zoom() const { return preview_.Percent(); }

  // Told what couldn't be printed, as a sentence for the user.
  std::function<void(const std::string& text)> PrintFailed;
  // The same of what couldn't be copied.
  std::function<void(const std::string& text)> CopyFailed;

  // True if the message is a key of the control and has been carried out.
  bool TranslateKey(const MSG& message);

  void PrintWithDialog();
  // Prints pages from 1 to a device of its own choosing; what fails is told. The preview takes on its paper.
  PrintOutcome PrintTo(const PrintOrder& order);

  // As tests look at it.
  PreviewWindow& Preview() { return preview_; }
  const PageLayout& Layout() const { return layout_; }
  PreviewBar& Bar() { return bar_; }
  int LeastWidth() const { return bar_.Width(); }

 protected:
  void Attached() override;
  void DocumentEnded() override;

 private:
  static LRESULT CALLBACK SubclassProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR id, DWORD_PTR self);
  void OnCommand(WORD) override {}
  void OnBarCommand(int id, WORD code);
  void OnSize();
  void UsePaper(const PageSetup& setup);
  void ShowView();
  void GoToTypedPage();
  void ShowZoomMenu();
  void Find(bool backwards);
  bool OnControlKey(WPARAM key);

  FoldCase fold_;
  GdiTextMeasure measure_;
  PageLayout layout_;
  PreviewWindow preview_;
  PreviewBar bar_;
  int barHeight_ = 0;
};

}  // namespace zq
