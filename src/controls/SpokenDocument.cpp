#include "controls/SpokenDocument.h"

#include <oleacc.h>
#include <oleauto.h>

#include <utility>

#include "platform/win32/ComObject.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

bool IsSelf(const VARIANT& child) {
  return child.vt == VT_I4 && child.lVal == CHILDID_SELF;
}

// All but role, state and value is what the system's own object of the window says.
class DocumentObject final : public ComObject<IAccessible> {
 public:
  DocumentObject(ComPointer<IAccessible> standard, const std::shared_ptr<SpokenText>& text)
      : standard_(std::move(standard)), text_(text) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    return ComObject::QueryInterface(id == IID_IDispatch ? IID_IAccessible : id, object);
  }

  HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* role) override {
    if (!IsSelf(child)) return standard_->get_accRole(child, role);
    role->vt = VT_I4;
    role->lVal = ROLE_SYSTEM_DOCUMENT;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* state) override {
    const HRESULT result = standard_->get_accState(child, state);
    if (SUCCEEDED(result) && IsSelf(child) && state->vt == VT_I4) state->lVal |= STATE_SYSTEM_READONLY;
    return result;
  }
  HRESULT STDMETHODCALLTYPE get_accValue(VARIANT child, BSTR* value) override {
    if (!IsSelf(child)) return standard_->get_accValue(child, value);
    *value = nullptr;
    const std::shared_ptr<SpokenText> text = text_.lock();
    if (!text) return CO_E_OBJNOTCONNECTED;
    try {
      *value = ::SysAllocString(ToWide((*text)()).c_str());
    } catch (...) {
      // Nothing is thrown into the system; without the text there is still the window.
    }
    return *value ? S_OK : E_OUTOFMEMORY;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    return standard_->GetTypeInfoCount(count);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override {
    return standard_->GetTypeInfo(index, locale, info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override {
    return standard_->GetIDsOfNames(id, names, count, locale, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID locale, WORD flags, DISPPARAMS* arguments,
                                   VARIANT* result, EXCEPINFO* exception, UINT* wrong) override {
    return standard_->Invoke(member, id, locale, flags, arguments, result, exception, wrong);
  }
  HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** parent) override {
    return standard_->get_accParent(parent);
  }
  HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* count) override {
    return standard_->get_accChildCount(count);
  }
  HRESULT STDMETHODCALLTYPE get_accChild(VARIANT child, IDispatch** object) override {
    return standard_->get_accChild(child, object);
  }
  HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* name) override {
    return standard_->get_accName(child, name);
  }
  HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT child, BSTR* text) override {
    return standard_->get_accDescription(child, text);
  }
  HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT child, BSTR* help) override {
    return standard_->get_accHelp(child, help);
  }
  HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) override {
    return standard_->get_accHelpTopic(file, child, topic);
  }
  HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT child, BSTR* key) override {
    return standard_->get_accKeyboardShortcut(child, key);
  }
  HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* child) override { return standard_->get_accFocus(child); }
  HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* children) override {
    return standard_->get_accSelection(children);
  }
  HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* action) override {
    return standard_->get_accDefaultAction(child, action);
  }
  HRESULT STDMETHODCALLTYPE accSelect(LONG flags, VARIANT child) override {
    return standard_->accSelect(flags, child);
  }
  HRESULT STDMETHODCALLTYPE accLocation(LONG* left, LONG* top, LONG* width, LONG* height,
                                        VARIANT child) override {
    return standard_->accLocation(left, top, width, height, child);
  }
  HRESULT STDMETHODCALLTYPE accNavigate(LONG direction, VARIANT from, VARIANT* to) override {
    return standard_->accNavigate(direction, from, to);
  }
  HRESULT STDMETHODCALLTYPE accHitTest(LONG left, LONG top, VARIANT* child) override {
    return standard_->accHitTest(left, top, child);
  }
  HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) override {
    return standard_->accDoDefaultAction(child);
  }
  HRESULT STDMETHODCALLTYPE put_accName(VARIANT child, BSTR name) override {
    return standard_->put_accName(child, name);
  }
  HRESULT STDMETHODCALLTYPE put_accValue(VARIANT, BSTR) override { return E_ACCESSDENIED; }

 private:
  ComPointer<IAccessible> standard_;
  std::weak_ptr<SpokenText> text_;
};

}  // namespace

LRESULT AnswerWithDocument(HWND window, WPARAM wParam, LPARAM lParam,
                           const std::shared_ptr<SpokenText>& text) {
  // Its upper half is undefined where a 32-bit program asks.
  if (static_cast<LONG>(lParam) != OBJID_CLIENT) return 0;
  void* standard = nullptr;
  if (FAILED(::CreateStdAccessibleObject(window, OBJID_CLIENT, IID_IAccessible, &standard))) return 0;
  const ComPointer<IAccessible> document(
      new DocumentObject(ComPointer<IAccessible>(static_cast<IAccessible*>(standard)), text));
  return ::LresultFromObject(IID_IAccessible, wParam, document.get());
}

void TellTextChanged(HWND window) {
  ::NotifyWinEvent(EVENT_OBJECT_VALUECHANGE, window, OBJID_CLIENT, CHILDID_SELF);
}

}  // namespace zq
