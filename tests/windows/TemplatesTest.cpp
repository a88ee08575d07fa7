// The dialogs as their templates have them: by the keyboard alone, for a screen reader, and at each
// resolution.
#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>
#include <map>
#include <set>
#include <string>

#include "DialogTemplate.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"
#include "resource.h"

namespace zq::test {
namespace {

std::string Where(const DialogTemplate& dialog, const TemplateItem& item) {
  return "dialog " + std::to_string(dialog.id) + ", control " + std::to_string(item.id) + " \"" +
         FromWide(item.text) + "\"";
}

// What the user works, and so has to get at.
bool TakesInput(const TemplateItem& item) {
  if (item.Is(WC_STATICW) || item.Is(PROGRESS_CLASSW) || item.IsFrame()) return false;
  return true;
}

// Has no caption of its own, so that a screen reader takes the label in front of it.
bool WantsLabel(const TemplateItem& item) {
  if (item.Is(PROGRESS_CLASSW)) return item.IsVisible();  // the Bin's is taken into its status bar
  return TakesInput(item) && !item.Is(WC_BUTTONW);
}

TEST(Templates, AreAllHere) {
  EXPECT_GE(DialogTemplates().size(), 17u);
}

// Windows takes the text in front, shown or hidden, for the name of a control. An explanation isn't one.
TEST(Templates, EachControlHasItsNameInFrontOfIt) {
  constexpr std::size_t kLongestName = 40;
  for (const DialogTemplate& dialog : DialogTemplates()) {
    for (std::size_t i = 0; i < dialog.items.size(); ++i) {
      const TemplateItem& item = dialog.items[i];
      EXPECT_FALSE(item.Is(WC_BUTTONW) && item.text.empty()) << Where(dialog, item);
      if (!WantsLabel(item)) continue;
      const TemplateItem label = i == 0 ? TemplateItem{} : dialog.items[i - 1];
      EXPECT_TRUE(label.IsText()) << Where(dialog, item);
      EXPECT_FALSE(label.text.empty()) << Where(dialog, item);
      EXPECT_LE(label.text.size(), kLongestName) << Where(dialog, item);
    }
  }
}

TEST(Templates, TabGoesToAllThatIsWorkedAndToNothingElse) {
  for (const DialogTemplate& dialog : DialogTemplates()) {
    for (std::size_t i = 0; i < dialog.items.size(); ++i) {
      const TemplateItem& item = dialog.items[i];
      const bool tabStop = (item.style & WS_TABSTOP) != 0;
      if (!item.IsRadio()) {
        EXPECT_EQ(tabStop, TakesInput(item)) << Where(dialog, item);
        continue;
      }
      // Tab goes to a group, the arrows go in it.
      const bool first = i == 0 || !dialog.items[i - 1].IsRadio();
      const bool last = i + 1 == dialog.items.size() || !dialog.items[i + 1].IsRadio();
      EXPECT_EQ(tabStop, first) << Where(dialog, item);
      EXPECT_EQ((item.style & WS_GROUP) != 0, first) << Where(dialog, item);
      const bool ended = i + 1 < dialog.items.size() && (dialog.items[i + 1].style & WS_GROUP) != 0;
      EXPECT_TRUE(!last || ended) << Where(dialog, item) << ": the arrows would go on";
    }
  }
}

TEST(Templates, EachAccessKeyIsOneControlsAlone) {
  for (const DialogTemplate& dialog : DialogTemplates()) {
    std::set<wchar_t> keys;
    for (const TemplateItem& item : dialog.items) {
      if (item.Is(WC_STATICW) && (item.style & SS_NOPREFIX)) continue;
      for (std::size_t at = item.text.find(L'&'); at != std::wstring::npos && at + 1 < item.text.size();
           at = item.text.find(L'&', at + 2)) {
        const wchar_t key = item.text[at + 1];
        if (key == L'&') continue;
        EXPECT_TRUE(keys.insert(std::towlower(key)).second) << Where(dialog, item);
      }
    }
  }
}

// The letters of a dialog at a resolution, and the base units that come of them.
class Letters {
 public:
  Letters(const DialogTemplate& dialog, int dpi, int weight)
      : font_(::CreateFontW(-::MulDiv(dialog.points, dpi, 72), 0, 0, 0, weight, 0, 0, 0, DEFAULT_CHARSET,
                            OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH,
                            dialog.font.c_str())),
        context_(::CreateCompatibleDC(nullptr)),
        before_(::SelectObject(context_, font_.Get())) {}
  Letters(const Letters&) = delete;
  Letters& operator=(const Letters&) = delete;
  ~Letters() {
    ::SelectObject(context_, before_);
    ::DeleteDC(context_);
  }

  SIZE Pixels(int width, int height) const {
    constexpr wchar_t kAlphabet[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    SIZE size{};
    ::GetTextExtentPoint32W(context_, kAlphabet, 52, &size);
    TEXTMETRICW metrics{};
    ::GetTextMetricsW(context_, &metrics);
    return {::MulDiv(width, (size.cx / 26 + 1) / 2, 4),
            ::MulDiv(height, static_cast<int>(metrics.tmHeight), 8)};
  }

  // What the text takes in lines of `width` pixels.
  SIZE Needed(const std::wstring& text, LONG width, UINT format) const {
    RECT rect{0, 0, width, 0};
    ::DrawTextW(context_, text.c_str(), static_cast<int>(text.size()), &rect, format | DT_CALCRECT);
    return {rect.right, rect.bottom};
  }

 private:
  UniqueFont font_;
  HDC context_;
  HGDIOBJ before_;
};

// The forms make these bold.
int WeightOf(const TemplateItem& item) {
  constexpr int kBold[] = {IDC_frmNew_Label2, IDC_frmEdit_lblFolder, IDC_frmAbout_Label1,
                           IDC_frmWelcome_Label1};
  return std::find(std::begin(kBold), std::end(kBold), item.id) != std::end(kBold) ? FW_BOLD : FW_NORMAL;
}

// What the control draws beside its text, in pixels.
int BesideText(const TemplateItem& item, int dpi) {
  if (item.IsTick()) return ::GetSystemMetricsForDpi(SM_CXMENUCHECK, static_cast<UINT>(dpi)) + dpi / 24;
  if (item.IsFrame()) return ::MulDiv(18, dpi, 96);
  if (item.Is(WC_BUTTONW)) return ::MulDiv(10, dpi, 96);
  return 0;
}

class TextsFit : public testing::TestWithParam<int> {};

TEST_P(TextsFit, InEachDialog) {
  const int dpi = GetParam();
  int looked = 0;
  for (const DialogTemplate& dialog : DialogTemplates()) {
    const Letters plain(dialog, dpi, FW_NORMAL);
    const Letters bold(dialog, dpi, FW_BOLD);
    for (const TemplateItem& item : dialog.items) {
      if (!item.IsText() && !item.Is(WC_BUTTONW)) continue;
      if (!item.IsVisible() || item.text.empty()) continue;
      const bool prefix = item.Is(WC_BUTTONW) || !(item.style & SS_NOPREFIX);
      const SIZE room =
          plain.Pixels(item.width, item.height);  // a dialog's units are those of its plain font
      const SIZE needed = (WeightOf(item) == FW_BOLD ? bold : plain)
                              .Needed(item.text, room.cx,
                                      (item.IsText() ? DT_WORDBREAK | DT_EXPANDTABS : DT_SINGLELINE) |
                                          (prefix ? 0U : DT_NOPREFIX));
      EXPECT_LE(needed.cx + BesideText(item, dpi), room.cx) << Where(dialog, item);
      // The room below the last letters' baseline may be a pixel short.
      const LONG height = item.IsFrame() ? 0 : needed.cy;  // its text stands on its edge
      EXPECT_LE(height, room.cy + ::MulDiv(1, dpi, 96)) << Where(dialog, item);
      ++looked;
    }
  }
  EXPECT_GE(looked, 79);
}

INSTANTIATE_TEST_SUITE_P(Templates, TextsFit, testing::Values(96, 144, 192),
                         [](const auto& dpi) { return "At" + std::to_string(dpi.param) + "Dpi"; });

}  // namespace
}  // namespace zq::test
