// A COM object of one interface, that lives until the last reference to it is given back.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include "debug/LiveCount.h"

namespace zq {

// Made with one reference, which is its maker's. All calls come on the one thread that made it.
template <class Interface>
class ComObject : public Interface {
 public:
  ComObject() { debug::Count(debug::Kind::ObjectReference, 1); }
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;
  virtual ~ComObject() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (id != IID_IUnknown && id != __uuidof(Interface)) {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    *object = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    debug::Count(debug::Kind::ObjectReference, 1);
    return ++references_;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    debug::Count(debug::Kind::ObjectReference, -1);
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  ULONG references_ = 1;
  [[no_unique_address]] debug::Alive<debug::Kind::Object> alive_;
};

}  // namespace zq
