// ToolBands: the tool bar. It stands in bands, one for each group of tools, which the user can move, put into
// rows and make wider; what doesn't fit a band is behind its chevron.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <span>
#include <string_view>
#include <vector>

#include "controls/BarLayout.h"
#include "controls/ImageList.h"
#include "controls/MenuPictures.h"
#include "controls/Tools.h"

namespace zq {

class ToolBands {
 public:
  ToolBands() = default;
  ToolBands(const ToolBands&) = delete;
  ToolBands& operator=(const ToolBands&) = delete;

  // Makes the bands in `owner`, to which their commands and notifications go. The tools are commands from
  // `firstId` on, in order; a separator begins a further band. `tools` stays where it is for as long as the
  // bands live.
  void Create(HWND owner, std::span<const Tool> tools, std::span<const std::string_view> names, UINT firstId);

  // Large pictures and the bands' sizes, as they belong to `dpi`.
  void LoadPictures(int dpi);

  // The tools that are commands, in the order of their ids.
  const std::vector<const Tool*>& Tools() const { return tools_; }
  bool Holds(UINT id) const { return id >= firstId_ && id < firstId_ + tools_.size(); }

  void SetEnabled(UINT id, bool enabled);
  bool IsEnabled(UINT id) const;
  void SetChecked(UINT id, bool checked);
  void SetTheme(const wchar_t* theme);  // null for the user's own

  // The tools that a narrow band doesn't show whole, as a menu under its chevron.
  void ShowHiddenTools(const NMREBARCHEVRON& chevron);

  // For the owner, which draws that menu's pictures where menus don't; false for what isn't theirs.
  bool OnMeasureItem(MEASUREITEMSTRUCT& item) const { return menuPictures_.Measure(item); }
  bool OnDrawItem(const DRAWITEMSTRUCT& item) const { return menuPictures_.Draw(item); }

  // Gives the text of a tool's tip, if that is what is asked.
  bool OnTip(const NMHDR& header) const;

  // How the bands are arranged now, and their arrangement anew.
  BarLayout Layout() const;
  void Arrange(const BarLayout& layout);
  int Count() const { return static_cast<int>(bands_.size()); }

  // As wide as the owner, and as high as the rows of bands are then.
  void LayOut();

  HWND Handle() const { return rebar_; }

 private:
  HWND CreateBand(std::string_view name);
  void AddButton(HWND band, const Tool& tool);
  void SizeButtons(HWND band);
  void SizeBands();
  void ShowWholeBand(WPARAM place);
  WPARAM IndexOfBand(int band) const;

  HWND owner_ = nullptr;
  HWND rebar_ = nullptr;
  UINT firstId_ = 0;
  std::vector<HWND> bands_;         // their windows; band 1 is the first
  std::vector<const Tool*> tools_;  // the id is the place here behind the first
  std::vector<HWND> bandOfTool_;    // beside `tools_`
  ImageList pictures_;
  MenuPictures menuPictures_;  // of what a chevron's menu shows
  int dpi_ = 96;               // that the bands are sized for
};

}  // namespace zq
