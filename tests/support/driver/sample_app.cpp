// A program with one of everything that the driver library reads and presses, to try it on.
#include "support/driver/sample_app.h"

#include <windows.h>
#include <commctrl.h>
#include <ole2.h>
#include <shellapi.h>
#include <shlobj.h>

#include <array>
#include <cwchar>
#include <string>
#include <vector>

namespace zq::test {
namespace {

struct SampleBox {
  const wchar_t* title;
  const wchar_t* text;
  UINT type;
};

constexpr std::array<SampleBox, 6> kBoxes = {{
    {L"Plain", L"One line.", MB_OK},
    {L"Information", L"It is done.\r\n\r\nGo on?", MB_OKCANCEL | MB_ICONINFORMATION},
    {L"Question", L"Größe behalten?", MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2},
    {L"Warning", L"A\nB\nC", MB_YESNOCANCEL | MB_ICONWARNING | MB_DEFBUTTON3 | MB_SYSTEMMODAL},
    {L"Error", L"Failed.", MB_RETRYCANCEL | MB_ICONERROR},
    {L"Many", L"Which?", MB_ABORTRETRYIGNORE | MB_ICONQUESTION},
}};

HWND g_main;
HWND g_list;
HWND g_edit;

HWND MakeControl(const wchar_t* className, const wchar_t* text, DWORD style, int id, RECT place,
                 DWORD exStyle = 0) {
  HWND control = ::CreateWindowExW(exStyle, className, text, WS_CHILD | WS_VISIBLE | style, place.left,
                                   place.top, place.right - place.left, place.bottom - place.top, g_main,
                                   reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                   ::GetModuleHandleW(nullptr), nullptr);
  ::SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(::GetStockObject(DEFAULT_GUI_FONT)), TRUE);
  return control;
}

void AddRow(const std::wstring& name, const std::wstring& size, bool ghosted) {
  std::wstring text = name;
  LVITEMW item{};
  item.mask = LVIF_TEXT | LVIF_STATE | LVIF_IMAGE;
  item.iItem = ListView_GetItemCount(g_list);
  item.iImage = item.iItem;
  item.stateMask = LVIS_CUT;
  item.state = ghosted ? LVIS_CUT : 0;
  item.pszText = text.data();
  const int row =
      static_cast<int>(::SendMessageW(g_list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
  std::wstring second = size;
  item.iSubItem = 1;
  item.pszText = second.data();
  ::SendMessageW(g_list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void AddColumn(HWND list, int index, const wchar_t* title) {
  std::wstring text = title;
  LVCOLUMNW column{};
  column.mask = LVCF_TEXT | LVCF_WIDTH;
  column.cx = 200;
  column.pszText = text.data();
  ::SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&column));
}

HTREEITEM AddTreeItem(HWND tree, HTREEITEM parent, const wchar_t* title) {
  std::wstring text = title;
  TVINSERTSTRUCTW insert{};
  insert.hParent = parent;
  insert.hInsertAfter = TVI_LAST;
  insert.item.mask = TVIF_TEXT;
  insert.item.pszText = text.data();
  return reinterpret_cast<HTREEITEM>(
      ::SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

void AddDropped(HDROP drop, const wchar_t* way) {
  const UINT count = ::DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
  for (UINT i = 0; i < count; ++i) {
    std::wstring path(::DragQueryFileW(drop, i, nullptr, 0) + 1, L'\0');
    ::DragQueryFileW(drop, i, path.data(), static_cast<UINT>(path.size()));
    path.pop_back();
    AddRow(path, way, false);
  }
}

// Takes a file list that is dragged onto the list, and refuses all else.
class Target final : public IDropTarget {
 public:
  virtual ~Target() = default;
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (!::IsEqualIID(id, IID_IUnknown) && !::IsEqualIID(id, IID_IDropTarget)) return E_NOINTERFACE;
    *object = this;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE DragEnter(IDataObject* data, DWORD, POINTL, DWORD* effect) override {
    FORMATETC format{CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
    takes_ = data->QueryGetData(&format) == S_OK;
    *effect = takes_ ? DROPEFFECT_COPY : DROPEFFECT_NONE;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE DragOver(DWORD, POINTL, DWORD* effect) override {
    *effect = takes_ ? DROPEFFECT_COPY : DROPEFFECT_NONE;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE DragLeave() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD, POINTL, DWORD* effect) override {
    FORMATETC format{CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
    STGMEDIUM medium{};
    *effect = DROPEFFECT_NONE;
    if (data->GetData(&format, &medium) != S_OK) return S_OK;
    AddDropped(static_cast<HDROP>(medium.hGlobal), L"dragged");
    ::ReleaseStgMedium(&medium);
    *effect = DROPEFFECT_COPY;
    return S_OK;
  }

 private:
  bool takes_ = false;
};

void MakeControls() {
  HWND tools = MakeControl(TOOLBARCLASSNAMEW, L"", TBSTYLE_LIST, kTools, {});
  ::SendMessageW(tools, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
  TBBUTTON buttons[3] = {};
  buttons[0] = {I_IMAGENONE,
                kCommand,
                TBSTATE_ENABLED,
                BTNS_BUTTON | BTNS_AUTOSIZE,
                {},
                0,
                reinterpret_cast<INT_PTR>(L"Größer")};
  buttons[1].fsStyle = BTNS_SEP;
  buttons[2] = {I_IMAGENONE,
                kEnable + 1000,
                TBSTATE_CHECKED,
                BTNS_CHECK | BTNS_AUTOSIZE,
                {},
                0,
                reinterpret_cast<INT_PTR>(L"Checked")};
  ::SendMessageW(tools, TB_ADDBUTTONSW, 3, reinterpret_cast<LPARAM>(buttons));
  ::SendMessageW(tools, TB_AUTOSIZE, 0, 0);

  HWND status = MakeControl(STATUSCLASSNAMEW, L"", 0, kStatus, {});
  const int edges[] = {150, 300, -1};
  ::SendMessageW(status, SB_SETPARTS, 3, reinterpret_cast<LPARAM>(edges));
  for (WPARAM i = 0; i < 3; ++i) {
    const std::wstring text = L"Panel " + std::to_wstring(i) + L" ü";
    ::SendMessageW(status, SB_SETTEXTW, i, reinterpret_cast<LPARAM>(text.c_str()));
  }

  g_list = MakeControl(WC_LISTVIEWW, L"", LVS_REPORT | LVS_SHOWSELALWAYS, kList, {10, 40, 450, 200},
                       WS_EX_CLIENTEDGE);
  AddColumn(g_list, 0, L"Name & Location");
  AddColumn(g_list, 1, L"Size");
  AddRow(L"C:\\letter.doc", L"12 KB", false);
  AddRow(L"C:\\größe ☃.txt", L"0 Bytes", true);

  HWND virtualList = MakeControl(WC_LISTVIEWW, L"", LVS_REPORT | LVS_OWNERDATA, kVirtualList,
                                 {460, 40, 620, 200}, WS_EX_CLIENTEDGE);
  AddColumn(virtualList, 0, L"Virtual");
  ::SendMessageW(virtualList, LVM_SETITEMCOUNT, 32767, 0);

  HWND progress = MakeControl(PROGRESS_CLASSW, L"", 0, kProgress, {10, 210, 300, 230});
  ::SendMessageW(progress, PBM_SETRANGE32, 0, 200);
  ::SendMessageW(progress, PBM_SETPOS, 55, 0);
  g_edit = MakeControl(L"EDIT", L"begin", WS_BORDER | WS_TABSTOP, kEdit, {10, 240, 200, 260});
  HWND check =
      MakeControl(L"BUTTON", L"&Check && see", BS_AUTOCHECKBOX | WS_TABSTOP, kCheck, {210, 240, 330, 260});
  ::SendMessageW(check, BM_SETCHECK, BST_CHECKED, 0);
  HWND combo = MakeControl(L"COMBOBOX", L"", CBS_DROPDOWNLIST, kCombo, {340, 240, 450, 400});
  for (const wchar_t* entry : {L"first", L"zweite Größe", L"third"}) {
    ::SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry));
  }
  ::SendMessageW(combo, CB_SETCURSEL, 1, 0);
  HWND tree = MakeControl(WC_TREEVIEWW, L"", TVS_HASBUTTONS | TVS_LINESATROOT, kTree, {460, 210, 620, 300},
                          WS_EX_CLIENTEDGE);
  HTREEITEM root = AddTreeItem(tree, TVI_ROOT, L"Drive (C:)");
  HTREEITEM folder = AddTreeItem(tree, root, L"Größe");
  AddTreeItem(tree, folder, L"Below");
  MakeControl(L"BUTTON", L"Ask &me", WS_TABSTOP, kBoxButton, {10, 270, 100, 295});
  MakeControl(L"BUTTON", L"&Off", WS_DISABLED, kDisabledButton, {110, 270, 200, 295});
}

// A dialog that has the class of a message box, but isn't one.
void OpenDialogLike() {
  HWND dialog = ::CreateWindowExW(WS_EX_DLGMODALFRAME, L"#32770", L"Looks like a box",
                                  WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE, 300, 300, 240, 160, g_main,
                                  nullptr, nullptr, nullptr);
  ::CreateWindowExW(0, L"STATIC", L"text", WS_CHILD | WS_VISIBLE, 5, 5, 100, 20, dialog, nullptr, nullptr,
                    nullptr);
  ::CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, 5, 30, 100, 20, dialog, nullptr, nullptr,
                    nullptr);
  ::CreateWindowExW(0, L"BUTTON", L"OK", WS_CHILD | WS_VISIBLE, 5, 60, 60, 25, dialog,
                    reinterpret_cast<HMENU>(IDOK), nullptr, nullptr);
}

void DoCommand(int id) {
  if (id >= kFirstBox && id < kFirstBox + static_cast<int>(kBoxes.size())) {
    const SampleBox& box = kBoxes[static_cast<std::size_t>(id - kFirstBox)];
    const int answer = ::MessageBoxW(g_main, box.text, box.title, box.type);
    ::SetWindowTextW(g_edit, (L"answer " + std::to_wstring(answer)).c_str());
    return;
  }
  switch (id) {
    case kBoxButton:
      DoCommand(kFirstBox + 2);
      break;
    case kCommand:
      ::SetWindowTextW(g_edit, L"command");
      break;
    case kEnable:
      ::EnableWindow(::GetDlgItem(g_main, kDisabledButton), TRUE);
      ::SendDlgItemMessageW(g_main, kTools, TB_ENABLEBUTTON, kEnable + 1000, TRUE);
      break;
    case kHide:
      ::ShowWindow(::GetDlgItem(g_main, kProgress), SW_HIDE);
      break;
    case kOpenDialogLike:
      OpenDialogLike();
      break;
    default:
      break;
  }
}

LRESULT CALLBACK MainProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      g_main = window;
      MakeControls();
      return 0;
    case WM_ACTIVATE:
      if (LOWORD(wParam) != WA_INACTIVE)
        ::SetWindowLongPtrW(window, GWLP_USERDATA, ::GetWindowLongPtrW(window, GWLP_USERDATA) + 1);
      return ::DefWindowProcW(window, message, wParam, lParam);
    case WM_COMMAND:
      if (LOWORD(wParam) == kCombo && HIWORD(wParam) == CBN_SELCHANGE) ::SetWindowTextW(g_edit, L"chosen");
      if (HIWORD(wParam) <= 1) DoCommand(LOWORD(wParam));
      return 0;
    case WM_DROPFILES:
      AddDropped(reinterpret_cast<HDROP>(wParam), L"dropped");
      ::DragFinish(reinterpret_cast<HDROP>(wParam));
      return 0;
    case WM_NOTIFY: {
      const auto* notice = reinterpret_cast<const NMHDR*>(lParam);
      if (notice->idFrom == kVirtualList && notice->code == LVN_GETDISPINFOW) {
        auto& item = reinterpret_cast<NMLVDISPINFOW*>(lParam)->item;
        if ((item.mask & LVIF_TEXT) != 0) {
          ::lstrcpynW(item.pszText, (L"row " + std::to_wstring(item.iItem)).c_str(), item.cchTextMax);
        }
      }
      return 0;
    }
    case WM_DESTROY:
      ::PostQuitMessage(42);
      return 0;
    default:
      return ::DefWindowProcW(window, message, wParam, lParam);
  }
}

int Run() {
  ::OleInitialize(nullptr);
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_WIN95_CLASSES | ICC_BAR_CLASSES};
  ::InitCommonControlsEx(&controls);
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = MainProc;
  windowClass.hInstance = ::GetModuleHandleW(nullptr);
  windowClass.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  windowClass.lpszClassName = L"ZqSample";
  ::RegisterClassW(&windowClass);
  ::CreateWindowExW(WS_EX_ACCEPTFILES, L"ZqSample", L"Sample – Größe", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 200,
                    150, 650, 400, nullptr, nullptr, windowClass.hInstance, nullptr);
  Target target;
  ::RegisterDragDrop(g_list, &target);

  // The argument text comes back as a row.
  const std::wstring arguments = ::GetCommandLineW();
  AddRow(arguments.substr(arguments.find(L'"', 1) + 1), L"arguments", false);

  ACCEL key{FVIRTKEY | FCONTROL, 'K', kCommand};
  HACCEL keys = ::CreateAcceleratorTableW(&key, 1);
  MSG message;
  while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (::TranslateAcceleratorW(g_main, keys, &message) != 0) continue;
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
  ::RevokeDragDrop(g_list);
  ::OleUninitialize();
  return static_cast<int>(message.wParam);
}

}  // namespace
}  // namespace zq::test

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  return zq::test::Run();
}
