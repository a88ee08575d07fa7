// PreviewWindow's selection of text: by the mouse, by a search, and onto the clipboard.
#include <algorithm>
#include <cstring>

#include "controls/PreviewWindow.h"
#include "controls/document/Characters.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr int kClipboardTries = 50;  // a second
constexpr const char* kClipboardInUse =
    "The text was not copied, because another program is using the clipboard.  Copy it again.";
constexpr const char* kNotCopied = "The text was not copied.  There is not enough memory for it.";

// On the open clipboard, as its only content.
bool PutText(const std::wstring& text) {
  const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
  UniqueGlobalMemory memory(::GlobalAlloc(GMEM_MOVEABLE, bytes));
  void* const place = memory ? ::GlobalLock(memory.Get()) : nullptr;
  if (!place) return false;
  std::memcpy(place, text.c_str(), bytes);
  ::GlobalUnlock(memory.Get());
  if (!::SetClipboardData(CF_UNICODETEXT, memory.Get())) return false;
  memory.Release();  // the clipboard's from now on
  return true;
}

}  // namespace

TextRange PreviewWindow::Selection() const {
  return {std::min(selectionAnchor_, selectionEnd_), std::max(selectionAnchor_, selectionEnd_)};
}

void PreviewWindow::SelectAll() {
  if (!document_) return;
  selectionAnchor_ = 0;
  selectionEnd_ = document_->text.size();
  ::InvalidateRect(hwnd_, nullptr, FALSE);
}

// The text that is nearest to a point of the view; nothing where there is no page.
std::optional<std::size_t> PreviewWindow::TextAt(POINT point) const {
  if (!layout_ || layout_->lines.empty()) return std::nullopt;
  const int canvasX = point.x + scrollX_;
  const int canvasY = point.y + scrollY_;
  int first = 0;
  int end = 0;
  plan_.VisiblePages(scrollY_, first, end);
  int page = first;
  for (int candidate = first; candidate < end; ++candidate) {
    const PixelRect place = plan_.PageRect(candidate);
    if (canvasY >= place.top && (canvasX >= place.left || candidate == first)) page = candidate;
  }
  const PixelRect place = plan_.PageRect(page);
  const auto x = static_cast<Twips>((canvasX - place.left) / plan_.PixelsPerTwip());
  const auto y = static_cast<Twips>((canvasY - place.top) / plan_.PixelsPerTwip());

  const LaidPage& laid = layout_->pages[static_cast<std::size_t>(page)];
  if (laid.firstLine == laid.endLine) return std::nullopt;
  // The lowest line that begins above the point; of a table's row, the cell that the point is in.
  std::size_t found = laid.firstLine;
  for (std::size_t i = laid.firstLine; i < laid.endLine; ++i) {
    const LaidLine& line = layout_->lines[i];
    if (line.top <= y && (line.top > layout_->lines[found].top || line.left <= x)) found = i;
  }
  const LaidLine& line = layout_->lines[found];
  std::vector<Twips> edges;
  MeasureRange(*document_, line.begin, line.end, *measure_, edges);
  std::size_t at = line.begin;
  Twips before = 0;
  while (at < line.end) {
    std::size_t next = at;
    NextCodePoint(document_->text, next);
    const Twips edge = edges[next - line.begin - 1];
    if (x - line.left < (before + edge) / 2) break;
    before = edge;
    at = next;
  }
  return at;
}

void PreviewWindow::OnButtonDown(POINT point) {
  ::SetFocus(hwnd_);
  const std::optional<std::size_t> at = TextAt(point);
  if (!at) return;
  selectionEnd_ = *at;
  if (::GetKeyState(VK_SHIFT) >= 0) selectionAnchor_ = *at;
  selecting_ = true;
  ::SetCapture(hwnd_);
  ::InvalidateRect(hwnd_, nullptr, FALSE);
}

void PreviewWindow::OnMouseMove(POINT point) {
  const ViewSize view = View();
  if (point.y < 0) OnScroll(SB_VERT, SB_LINEUP);
  if (point.y > view.height) OnScroll(SB_VERT, SB_LINEDOWN);
  const std::optional<std::size_t> at = TextAt(point);
  if (!at || *at == selectionEnd_) return;
  selectionEnd_ = *at;
  ::InvalidateRect(hwnd_, nullptr, FALSE);
}

// Selects a part of the text and brings it into view.
void PreviewWindow::Select(TextRange range) {
  if (!layout_ || layout_->lines.empty()) return;
  selectionAnchor_ = range.begin;
  selectionEnd_ = range.end;
  ::InvalidateRect(hwnd_, nullptr, FALSE);

  const std::size_t index = LineAt(*layout_, range.begin);
  const LaidLine& line = layout_->lines[index];
  const PixelRect page = plan_.PageRect(static_cast<int>(PageOfLine(*layout_, index)));
  std::vector<Twips> edges;
  MeasureRange(*document_, line.begin, std::min(range.end, line.end), *measure_, edges);
  const std::size_t before = range.begin > line.begin ? range.begin - line.begin : 0;
  const Twips startX = before == 0 || before > edges.size() ? 0 : edges[before - 1];
  const Twips endX = edges.empty() ? startX : edges.back();
  const int left = page.left + ZoomedPixels(line.left + startX);
  const int right = page.left + ZoomedPixels(line.left + endX);
  const int top = page.top + ZoomedPixels(line.top);
  const int bottom = page.top + ZoomedPixels(line.top + line.height);
  const ViewSize view = View();
  int x = scrollX_;
  int y = scrollY_;
  if (right > x + view.width) x = right - view.width / 2;
  if (left < x) x = std::max(left - view.width / 8, 0);
  if (top < y || bottom > y + view.height) y = top - view.height / 3;
  ScrollTo(x, y);
}

int PreviewWindow::ZoomedPixels(Twips twips) const {
  return static_cast<int>(twips * plan_.PixelsPerTwip());
}

// Another program has it for a moment only, as a rule: whoever watches it looks in after each change.
bool PreviewWindow::OpenClipboardSoon() const {
  for (int tries = 1; !::OpenClipboard(hwnd_); ++tries) {
    if (tries == kClipboardTries) return false;
    Pause();
  }
  return true;
}

void PreviewWindow::CopySelection() {
  if (!document_ || Selection().Empty()) return;
  const std::wstring text = ToWide(TextToCopy(*document_, Selection()));
  if (!OpenClipboardSoon()) {
    if (CopyFailed) CopyFailed(kClipboardInUse);
    return;
  }
  const bool copied = ::EmptyClipboard() && PutText(text);
  ::CloseClipboard();
  if (!copied && CopyFailed) CopyFailed(kNotCopied);
}

}  // namespace zq
