// Stands in for the system's keeper of names for screen readers, which Wine only has the shell of: what it is
// told is here for the test to look at.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>
#include <oleacc.h>

#include <map>
#include <string>

#include "platform/win32/Wide.h"

namespace zq::test {

// For as long as it lives, this process gets it when it asks the system for the service.
class NameService final : public IAccPropServices, public IClassFactory {
 public:
  NameService() {
    EXPECT_EQ(::CoRegisterClassObject(kClass, static_cast<IClassFactory*>(this), CLSCTX_INPROC_SERVER,
                                      REGCLS_MULTIPLEUSE, &cookie_),
              S_OK);
  }
  ~NameService() { ::CoRevokeClassObject(cookie_); }
  NameService(const NameService&) = delete;
  NameService& operator=(const NameService&) = delete;

  // "" for none.
  std::string NameOf(HWND window) const {
    const auto found = names_.find(window);
    return found == names_.end() ? "" : FromWide(found->second);
  }
  bool IsEmpty() const { return names_.empty(); }

  // Both interfaces: the test asks only for what is there.
  HRESULT WINAPI QueryInterface(REFIID id, void** object) override {
    *object = id == IID_IClassFactory ? static_cast<void*>(static_cast<IClassFactory*>(this))
                                      : static_cast<void*>(static_cast<IAccPropServices*>(this));
    return S_OK;
  }
  ULONG WINAPI AddRef() override { return 2; }
  ULONG WINAPI Release() override { return 1; }

  HRESULT WINAPI CreateInstance(IUnknown*, REFIID id, void** object) override {
    return QueryInterface(id, object);
  }
  HRESULT WINAPI LockServer(BOOL) override { return S_OK; }

  HRESULT WINAPI SetHwndPropStr(HWND window, DWORD object, DWORD child, MSAAPROPID property,
                                LPCWSTR text) override {
    EXPECT_TRUE(IsTheNameOfAWindow(object, child, property));
    names_[window] = text;
    return S_OK;
  }
  HRESULT WINAPI ClearHwndProps(HWND window, DWORD object, DWORD child, const MSAAPROPID* properties,
                                int count) override {
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(IsTheNameOfAWindow(object, child, *properties));
    names_.erase(window);
    return S_OK;
  }

  // Nothing else is called.
  HRESULT WINAPI SetPropValue(const BYTE*, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
  HRESULT WINAPI SetPropServer(const BYTE*, DWORD, const MSAAPROPID*, int, IAccPropServer*,
                               AnnoScope) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI ClearProps(const BYTE*, DWORD, const MSAAPROPID*, int) override { return E_NOTIMPL; }
  HRESULT WINAPI SetHwndProp(HWND, DWORD, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
  HRESULT WINAPI SetHwndPropServer(HWND, DWORD, DWORD, const MSAAPROPID*, int, IAccPropServer*,
                                   AnnoScope) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI ComposeHwndIdentityString(HWND, DWORD, DWORD, BYTE**, DWORD*) override { return E_NOTIMPL; }
  HRESULT WINAPI DecomposeHwndIdentityString(const BYTE*, DWORD, HWND*, DWORD*, DWORD*) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI SetHmenuProp(HMENU, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
  HRESULT WINAPI SetHmenuPropStr(HMENU, DWORD, MSAAPROPID, LPCWSTR) override { return E_NOTIMPL; }
  HRESULT WINAPI SetHmenuPropServer(HMENU, DWORD, const MSAAPROPID*, int, IAccPropServer*,
                                    AnnoScope) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI ClearHmenuProps(HMENU, DWORD, const MSAAPROPID*, int) override { return E_NOTIMPL; }
  HRESULT WINAPI ComposeHmenuIdentityString(HMENU, DWORD, BYTE**, DWORD*) override { return E_NOTIMPL; }
  HRESULT WINAPI DecomposeHmenuIdentityString(const BYTE*, DWORD, HMENU*, DWORD*) override {
    return E_NOTIMPL;
  }

 private:
  // The numbers that Windows gives to the service and to the property of a name.
  static constexpr GUID kClass{0xb5f8350b, 0x0548, 0x48b1, {0xa6, 0xee, 0x88, 0xbd, 0x00, 0xb4, 0xa5, 0xe7}};
  static constexpr GUID kName{0x608d3df8, 0x8128, 0x4aa7, {0xa4, 0x28, 0xf5, 0x5e, 0x49, 0x26, 0x72, 0x91}};

  static bool IsTheNameOfAWindow(DWORD object, DWORD child, const MSAAPROPID& property) {
    return object == static_cast<DWORD>(OBJID_CLIENT) && child == CHILDID_SELF &&
           ::IsEqualGUID(property, kName);
  }

  DWORD cookie_ = 0;
  std::map<HWND, std::wstring> names_;
};

}  // namespace zq::test
