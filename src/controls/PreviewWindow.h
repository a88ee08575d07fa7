// PreviewWindow: shows a document's pages on a grey ground; scrolls, zooms, selects and copies.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "controls/PagePainter.h"
#include "controls/SpokenDocument.h"
#include "controls/document/PageLayout.h"
#include "controls/document/PreviewPlan.h"
#include "controls/document/TextSearch.h"

namespace zq {

class PreviewWindow {
 public:
  PreviewWindow() = default;
  PreviewWindow(const PreviewWindow&) = delete;
  PreviewWindow& operator=(const PreviewWindow&) = delete;
  ~PreviewWindow();

  void Create(HWND parent, int id);
  HWND Handle() const { return hwnd_; }

  // The three must outlive the window, or the next call. The view goes to the first page.
  void ShowDocument(const Document& document, const PageLayout& layout, TextMeasure& measure);

  std::function<void()> ViewChange;  // another page or another zoom
  // Told why a text was not copied, as a sentence for the user.
  std::function<void(const std::string& text)> CopyFailed;
  // Between two tries to get the clipboard; a test has something else happen then.
  std::function<void()> Pause = [] { ::Sleep(20); };

  void SetZoom(ZoomMode mode, double percent = 100);
  ZoomMode Mode() const { return mode_; }
  double Percent() const { return plan_.Percent(); }
  int Page() const;  // the present one, from 0
  int PageCount() const;
  int PagesInRow() const { return plan_.Columns(); }
  // Whether the view can go to other pages; not where all are seen.
  bool HasPagesBefore() const { return Page() > 0; }
  bool HasPagesBehind() const;
  void GoToPage(int page);

  TextRange Selection() const;
  void Select(TextRange range);
  void SelectAll();
  void CopySelection();

 private:
  static LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  void Paint();
  void DrawPages(HDC context, const RECT& dirty);
  void Replan();
  void ScrollTo(int x, int y);
  void OnScroll(int bar, int request);
  void OnWheel(WPARAM wParam, bool sideways);
  bool OnKey(WPARAM key);
  void UpdateScrollBars();
  void OnButtonDown(POINT point);
  void OnMouseMove(POINT point);
  std::optional<std::size_t> TextAt(POINT point) const;
  int ZoomedPixels(Twips twips) const;
  ViewSize View() const;
  void TellChange();
  std::string PageText() const;  // of the present page
  bool OpenClipboardSoon() const;

  HWND hwnd_ = nullptr;
  const Document* document_ = nullptr;
  const PageLayout* layout_ = nullptr;
  TextMeasure* measure_ = nullptr;
  std::unique_ptr<PagePainter> painter_;
  PreviewPlan plan_;
  ZoomMode mode_ = ZoomMode::Percent;
  double percent_ = 100;
  int scrollX_ = 0;
  int scrollY_ = 0;
  int wheelRest_ = 0;
  std::size_t selectionAnchor_ = 0;
  std::size_t selectionEnd_ = 0;
  bool selecting_ = false;
  int toldPage_ = 0;
  std::shared_ptr<SpokenText> spoken_ = std::make_shared<SpokenText>([this] { return PageText(); });
};

}  // namespace zq
