// A drop on a window of this process: what the shell's drawer of the drag picture is told.
#include <windows.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ole2.h>
#include <shlobj.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "controls/DropTarget.h"
#include "controls/MessageLoop.h"
#include "support/driver/Drop.h"
#include "support/driver/Wait.h"

namespace zq::test {
namespace {

using testing::ElementsAre;

// Stands in the place of the shell's drawer, for this process.
class Drawer final : public IDropTargetHelper, public IClassFactory {
 public:
  std::vector<std::string> calls;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (id == IID_IDropTargetHelper) {
      *object = static_cast<IDropTargetHelper*>(this);
    } else if (id == IID_IClassFactory || id == IID_IUnknown) {
      *object = static_cast<IClassFactory*>(this);
    } else {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
    return QueryInterface(id, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  HRESULT STDMETHODCALLTYPE DragEnter(HWND window, IDataObject*, POINT*, DWORD effect) override {
    Add(::IsWindow(window) ? "enter" : "enter nothing", effect);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE DragLeave() override {
    calls.emplace_back("leave");
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE DragOver(POINT*, DWORD effect) override {
    if (calls.empty() || !calls.back().starts_with("over")) Add("over", effect);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Drop(IDataObject*, POINT*, DWORD effect) override {
    Add("drop", effect);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Show(BOOL) override { return S_OK; }

 private:
  void Add(const char* call, DWORD effect) { calls.push_back(call + (" " + std::to_string(effect))); }
};

// What came of the last time that the pointer was over the window: on its way it may touch the window, leave
// it and come again, since the screen reports its moves late.
std::vector<std::string> LastVisit(const std::vector<std::string>& calls, const std::string& begin) {
  const auto isBegin = [&](const std::string& call) { return call.starts_with(begin); };
  const auto last = std::find_if(calls.rbegin(), calls.rend(), isBegin);
  return last == calls.rend() ? calls : std::vector<std::string>(std::prev(last.base()), calls.end());
}

TEST(DropTargetTest, TheShellDrawsWhatIsDraggedOverIt) {
  ASSERT_TRUE(SUCCEEDED(::OleInitialize(nullptr)));
  Drawer drawer;
  DWORD registered = 0;
  ASSERT_EQ(::CoRegisterClassObject(CLSID_DragDropHelper, static_cast<IClassFactory*>(&drawer),
                                    CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registered),
            S_OK);
  const HWND window =
      ::CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"target", WS_POPUP | WS_VISIBLE | SS_NOTIFY, 200, 200, 200,
                        200, nullptr, nullptr, nullptr, nullptr);
  DropTarget target;
  DroppedPaths dropped;
  target.Register(window, [&](const DroppedPaths& paths) { dropped = paths; });
  EXPECT_EQ(DragFilesTo({300, 300}, {"C:\\a.txt"}), static_cast<DWORD>(DROPEFFECT_COPY));
  Await("the drop", [&] {
    PumpMessages();
    return !dropped.empty();
  });
  EXPECT_THAT(dropped, ElementsAre("C:\\a.txt"));
  // The target's answer, copy, goes with each.
  EXPECT_THAT(LastVisit(drawer.calls, "enter"), ElementsAre("enter 1", "over 1", "drop 1"));
  const auto count = [&](const char* call) { return std::ranges::count(drawer.calls, call); };
  EXPECT_EQ(count("leave"), count("enter 1") - 1) << "each visit but the last ends";
  target.Revoke();
  ::DestroyWindow(window);
  ::CoRevokeClassObject(registered);
  ::OleUninitialize();
}

// What is dropped on such a target has been dealt with when the source goes on.
TEST(DropTargetTest, TakesInsideTheDropAndTellsWhatIsOverIt) {
  ASSERT_TRUE(SUCCEEDED(::OleInitialize(nullptr)));
  const HWND window =
      ::CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"target", WS_POPUP | WS_VISIBLE | SS_NOTIFY, 200, 200, 200,
                        200, nullptr, nullptr, nullptr, nullptr);
  DropTarget target;
  std::vector<std::string> told;
  target.Hover = [&](bool over) { told.emplace_back(over ? "over" : "off"); };
  target.Register(
      window, [&](const DroppedPaths& paths) { told.insert(told.end(), paths.begin(), paths.end()); },
      DropTarget::When::Inside);
  EXPECT_EQ(DragFilesTo({300, 300}, {"C:\\a.txt", "C:\\ä.txt"}), static_cast<DWORD>(DROPEFFECT_COPY));
  EXPECT_THAT(LastVisit(told, "over"), ElementsAre("over", "off", "C:\\a.txt", "C:\\ä.txt"));
  EXPECT_EQ(std::ranges::count(told, "off"), std::ranges::count(told, "over")) << "no visit is left open";
  told.clear();
  target.SetAccepting(false);
  EXPECT_EQ(DragFilesTo({300, 300}, {"C:\\a.txt"}), static_cast<DWORD>(DROPEFFECT_NONE));
  EXPECT_THAT(told, ElementsAre());
  target.Revoke();
  ::DestroyWindow(window);
  ::OleUninitialize();
}

}  // namespace
}  // namespace zq::test
