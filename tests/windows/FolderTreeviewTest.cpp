// The folder tree over the shell's real name space.
#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>

#include "Driving.h"
#include "controls/Default.h"
#include "controls/FolderTreeview.h"
#include "controls/MessageLoop.h"
#include "controls/RowColours.h"
#include "platform/win32/Wide.h"
#include "resource.h"
#include "support/driver/Picture.h"
#include "support/driver/Scratch.h"

namespace zq::test {
namespace {

using Selection = std::pair<std::string, std::string>;

class frmTree final : public Form {
 public:
  frmTree() : Form(IDD_frmFolder) {
    FT1.SelectionChange = [this](const std::string& text, const std::string& fullPath) {
      selections.emplace_back(text, fullPath);
    };
  }

  FolderTreeview FT1{*this, IDC_frmFolder_FT1};
  std::vector<Selection> selections;
};

class FolderTreeviewTest : public testing::Test {
 protected:
  void SetUp() override {
    Default<frmTree>::SetFactory([] { return std::make_unique<frmTree>(); });
    form_ = &Default<frmTree>::Touch();
  }
  void TearDown() override {
    form_->Unload();
    Form::DestroyClosed();
  }

  HWND Tree() const { return form_->FT1.Handle(); }
  HTREEITEM Selected() const { return TreeView_GetSelection(Tree()); }
  std::string NameOf(HTREEITEM item) const {
    wchar_t text[300] = L"";
    TVITEMW info{};
    info.mask = TVIF_TEXT;
    info.hItem = item;
    info.pszText = text;
    info.cchTextMax = 300;
    ::SendMessageW(Tree(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&info));
    return FromWide(text);
  }
  std::vector<std::string> ChildrenOf(HTREEITEM item) const {
    std::vector<std::string> names;
    for (HTREEITEM child = TreeView_GetChild(Tree(), item); child;
         child = TreeView_GetNextSibling(Tree(), child)) {
      names.push_back(NameOf(child));
    }
    return names;
  }
  static std::string CurrentFolder() {
    std::wstring folder(::GetCurrentDirectoryW(0, nullptr), L'\0');
    folder.resize(::GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
    return FromWide(folder);
  }
  bool HasButton(HTREEITEM item) const {
    TVITEMW info{};
    info.mask = TVIF_CHILDREN;
    info.hItem = item;
    ::SendMessageW(Tree(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&info));
    return info.cChildren != 0;
  }

  ScratchFolder scratch_;
  frmTree* form_ = nullptr;
};

TEST_F(FolderTreeviewTest, OpensOnTheDesktopWithNothingSelected) {
  const HTREEITEM root = TreeView_GetRoot(Tree());
  EXPECT_EQ(NameOf(root), "Desktop");
  EXPECT_FALSE(ChildrenOf(root).empty());
  EXPECT_EQ(Selected(), nullptr);
  EXPECT_TRUE(form_->selections.empty());
}

TEST_F(FolderTreeviewTest, TellsTheDesktopByItsNameAndNotByAPath) {
  form_->FT1.SelectDesktop();
  ASSERT_EQ(form_->selections.size(), 1U);
  EXPECT_EQ(form_->selections[0].first, "Desktop");
}

TEST_F(FolderTreeviewTest, SelectsAFolderByItsPathAndTellsThatPath) {
  scratch_.Make("Papers & more\\Grüße – письмо\\a.txt", "a");
  const std::string path = scratch_ / "Papers & more\\Grüße – письмо";
  form_->FT1.SelectPath(path);
  ASSERT_EQ(form_->selections.size(), 1U);
  EXPECT_EQ(form_->selections[0], Selection(path, path));
  EXPECT_EQ(NameOf(Selected()), "Grüße – письмо");
  EXPECT_EQ(NameOf(TreeView_GetParent(Tree(), Selected())), "Papers & more");
  RECT place{};
  EXPECT_TRUE(TreeView_GetItemRect(Tree(), Selected(), &place, FALSE)) << "its parents are open";
}

TEST_F(FolderTreeviewTest, SelectsADriveByItsRoot) {
  form_->FT1.SelectPath("C:\\");
  ASSERT_EQ(form_->selections.size(), 1U);
  EXPECT_EQ(form_->selections[0], Selection("C:\\", "C:\\"));
}

TEST_F(FolderTreeviewTest, TheChosenFolderStandsOutWhileTheFocusIsElsewhere) {
  scratch_.Make("Papers\\a.txt", "a");
  static_cast<Form*>(form_)->Show();
  form_->FT1.SelectPath(scratch_ / "Papers");
  ::SetForegroundWindow(form_->Handle());
  ::SetFocus(Item(*form_, IDC_frmFolder_txtMask));
  PumpMessages();
  ::RedrawWindow(Tree(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  RECT rect{};
  ASSERT_TRUE(TreeView_GetItemRect(Tree(), Selected(), &rect, TRUE));
  TakePicture(Window(form_->Handle()), "tree-chosen-elsewhere");
  const HDC context = ::GetDC(Tree());
  const COLORREF ground = ::GetPixel(context, rect.left + 1, rect.top + 2);
  ::ReleaseDC(Tree(), context);
  EXPECT_GE(Contrast(ground, ::GetSysColor(COLOR_WINDOW)), 3.0) << std::hex << ground;
}

TEST_F(FolderTreeviewTest, IgnoresWhatIsNoFolderOfTheShell) {
  const std::string file = scratch_.Make("a.txt", "a");
  form_->FT1.SelectPath(scratch_.Path());
  const HTREEITEM before = Selected();
  form_->selections.clear();
  for (const std::string& path : {std::string(), std::string(150, '\0'), std::string("Q:\\none"),
                                  scratch_ / "none", file, std::string("*?<>|")}) {
    form_->FT1.SelectPath(path);
    EXPECT_EQ(Selected(), before) << path;
  }
  EXPECT_TRUE(form_->selections.empty());
}

TEST_F(FolderTreeviewTest, APathThatIsNotFullIsReckonedFromTheCurrentFolder) {
  scratch_.Make("zq\\papers\\a.txt", "a");
  const std::string before = CurrentFolder();
  ASSERT_TRUE(::SetCurrentDirectoryW(zq::ToWide(scratch_ / "zq").c_str()));
  form_->FT1.SelectPath("papers");
  form_->FT1.SelectPath("..");
  form_->FT1.SelectPath("none");
  ::SetCurrentDirectoryW(zq::ToWide(before).c_str());
  const std::string papers = scratch_ / "zq\\papers";
  EXPECT_EQ(form_->selections,
            (std::vector<Selection>{{papers, papers}, {scratch_.Path(), scratch_.Path()}}));
}

// Below a drive there may be thousands, and no key is looked at before all have been read.
TEST_F(FolderTreeviewTest, MultiplyKeyOpensTheOneFolderAlone) {
  scratch_.Make("top\\middle\\bottom\\a.txt", "a");
  scratch_.Make("top\\second\\b.txt", "b");
  form_->FT1.SelectPath(scratch_ / "top");
  const HTREEITEM top = Selected();
  ASSERT_TRUE(ChildrenOf(top).empty());
  form_->Show();
  ::SetFocus(Tree());
  PostKey(*form_, VK_MULTIPLY);
  EXPECT_EQ(ChildrenOf(top), (std::vector<std::string>{"middle", "second"}));
  EXPECT_TRUE(ChildrenOf(TreeView_GetChild(Tree(), top)).empty());
  EXPECT_EQ(Selected(), top);
}

// Under Wine the desktop holds the whole machine below it.
TEST_F(FolderTreeviewTest, ShowsNothingOutsideDrivesAndShares) {
  const HTREEITEM root = TreeView_GetRoot(Tree());
  for (HTREEITEM child = TreeView_GetChild(Tree(), root); child;
       child = TreeView_GetNextSibling(Tree(), child)) {
    EXPECT_NE(NameOf(child), "/");
  }
  for (const char* path :
       {"\\\\?\\unix\\", "\\\\?\\unix\\usr", "\\\\.\\unix\\usr", "/usr", "::", "shell:Desktop"}) {
    form_->FT1.SelectPath(path);
    EXPECT_EQ(Selected(), nullptr) << path;
  }
  EXPECT_TRUE(form_->selections.empty());
}

// A folder of the shell's that can't compare its items.
class NoComparison final : public IShellFolder {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE ParseDisplayName(HWND, IBindCtx*, LPWSTR, ULONG*, PIDLIST_RELATIVE*,
                                             ULONG*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE EnumObjects(HWND, SHCONTF, IEnumIDList**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE BindToObject(PCUIDLIST_RELATIVE, IBindCtx*, REFIID, void**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE BindToStorage(PCUIDLIST_RELATIVE, IBindCtx*, REFIID, void**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CompareIDs(LPARAM, PCUIDLIST_RELATIVE, PCUIDLIST_RELATIVE) override {
    return compared;
  }
  HRESULT STDMETHODCALLTYPE CreateViewObject(HWND, REFIID, void**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetAttributesOf(UINT, PCUITEMID_CHILD_ARRAY, SFGAOF*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetUIObjectOf(HWND, UINT, PCUITEMID_CHILD_ARRAY, REFIID, UINT*, void**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetDisplayNameOf(PCUITEMID_CHILD, SHGDNF, STRRET*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetNameOf(HWND, PCUITEMID_CHILD, LPCWSTR, SHGDNF, PITEMID_CHILD*) override {
    return E_NOTIMPL;
  }

  HRESULT compared = E_FAIL;
};

TEST(FolderTreeview, FoldersThatCantBeComparedAreNotTheSame) {
  NoComparison folder;
  EXPECT_NE(CompareItems(folder, SHCIDS_CANONICALONLY, nullptr, nullptr), 0);
  EXPECT_EQ(CompareItems(folder, 0, nullptr, nullptr), std::nullopt);
  folder.compared = S_OK;
  EXPECT_EQ(CompareItems(folder, 0, nullptr, nullptr), 0);
  folder.compared = MAKE_HRESULT(SEVERITY_SUCCESS, 0, 0xFFFF);
  EXPECT_EQ(CompareItems(folder, 0, nullptr, nullptr), -1);
}

TEST_F(FolderTreeviewTest, ListsFoldersAloneInOrder) {
  for (const char* name : {"Delta\\x.txt", "alpha\\x.txt", "Charlie\\x.txt", "bravo\\x.txt", "file.txt"})
    scratch_.Make(name, "x");
  form_->FT1.SelectPath(scratch_.Path());
  TreeView_Expand(Tree(), Selected(), TVE_EXPAND);
  EXPECT_EQ(ChildrenOf(Selected()), (std::vector<std::string>{"alpha", "bravo", "Charlie", "Delta"}));
}

TEST_F(FolderTreeviewTest, LooksAFolderUpOnlyWhenItIsOpened) {
  scratch_.Make("Papers\\Letters\\a.txt", "a");
  form_->FT1.SelectPath(scratch_ / "Papers");
  EXPECT_TRUE(ChildrenOf(Selected()).empty());
  EXPECT_TRUE(HasButton(Selected()));
  scratch_.Make("Papers\\Later\\a.txt", "a");
  ::SendMessageA(Tree(), WM_KEYDOWN, VK_RIGHT, 0);
  EXPECT_EQ(ChildrenOf(Selected()), (std::vector<std::string>{"Later", "Letters"}));
}

TEST_F(FolderTreeviewTest, FolderWithoutFoldersHasNoButtonOnceItWasOpened) {
  scratch_.Make("Papers\\a.txt", "a");
  form_->FT1.SelectPath(scratch_ / "Papers");
  TreeView_Expand(Tree(), Selected(), TVE_EXPAND);
  EXPECT_FALSE(HasButton(Selected()));
}

TEST_F(FolderTreeviewTest, SelectsAHiddenFolderInItsPlaceAmongTheOthers) {
  scratch_.Make("!first\\a.txt", "a");
  scratch_.Make("zulu\\a.txt", "a");
  scratch_.Make(".mine\\a.txt", "a");
  const std::string hidden = scratch_ / ".mine";
  ::SetFileAttributesA(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN);
  ASSERT_TRUE(::GetFileAttributesA(hidden.c_str()) & FILE_ATTRIBUTE_HIDDEN);
  form_->FT1.SelectPath(scratch_ / "zulu");
  const HTREEITEM parent = TreeView_GetParent(Tree(), Selected());
  ASSERT_EQ(ChildrenOf(parent), (std::vector<std::string>{"!first", "zulu"}));

  form_->FT1.SelectPath(hidden);
  EXPECT_EQ(form_->selections.back(), Selection(hidden, hidden));
  EXPECT_EQ(ChildrenOf(parent), (std::vector<std::string>{"!first", ".mine", "zulu"}));
  form_->FT1.SelectPath(scratch_ / "zulu");
  form_->FT1.SelectPath(hidden);
  EXPECT_EQ(ChildrenOf(parent).size(), 3U) << "it is there by now";
}

TEST_F(FolderTreeviewTest, FolderThatIsGoneOpensEmptyAndWithoutABox) {
  scratch_.Make("Papers\\Letters\\a.txt", "a");
  form_->FT1.SelectPath(scratch_ / "Papers");
  ::DeleteFileA((scratch_ / "Papers\\Letters\\a.txt").c_str());
  ::RemoveDirectoryA((scratch_ / "Papers\\Letters").c_str());
  ::RemoveDirectoryA((scratch_ / "Papers").c_str());
  TreeView_Expand(Tree(), Selected(), TVE_EXPAND);
  EXPECT_TRUE(ChildrenOf(Selected()).empty());
  EXPECT_EQ(form_->selections.size(), 1U);
}

}  // namespace
}  // namespace zq::test
