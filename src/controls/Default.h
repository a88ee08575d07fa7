// Default<frmX>: the module-level reference of a form. Touching it when it is empty creates a fresh,
// hidden instance and runs its load; closing the form releases it. So an event that arrives for a closed
// window never fails: it works on a hidden one.
#pragma once

#include <functional>
#include <memory>

#include "controls/Form.h"
#include "platform/RunTimeError.h"

namespace zq {

template <class FormType>
class Default {
 public:
  using Factory = std::function<std::unique_ptr<FormType>()>;

  // Said once, where the program is put together.
  static void SetFactory(Factory factory) { factory_ = std::move(factory); }

  static FormType& Touch() {
    if (!instance_) {
      std::unique_ptr<FormType> form = factory_();
      form->OnClosed(&Default::Release);
      // The reference holds from the start: what the load runs may touch it.
      instance_ = std::move(form);
      try {
        instance_->Create();
      } catch (...) {
        Release();
        throw;
      }
      // The load of a second instance of the program closes the form that it loads.
      if (!instance_) throw RunTimeError(ErrorNumber::ObjectWasUnloaded);
    }
    return *instance_;
  }

  static bool IsLoaded() { return instance_ != nullptr; }

  static void Release() { Form::Retire(std::move(instance_)); }

 private:
  static inline Factory factory_;
  static inline std::unique_ptr<FormType> instance_;
};

}  // namespace zq
