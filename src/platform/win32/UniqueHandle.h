// UniqueHandle: owns a handle of the system and closes it once.
#pragma once

#include <windows.h>

#include <memory>
#include <utility>

namespace zq {

// Traits give `Type`, `Invalid()` and `Close(Type)`.
template <class Traits>
class UniqueHandle {
 public:
  using Type = typename Traits::Type;

  UniqueHandle() = default;
  explicit UniqueHandle(Type handle) : handle_(handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) Reset(other.Release());
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  Type Get() const { return handle_; }
  explicit operator bool() const { return handle_ != Traits::Invalid(); }
  Type Release() { return std::exchange(handle_, Traits::Invalid()); }
  void Reset(Type handle = Traits::Invalid()) {
    if (handle_ != Traits::Invalid()) Traits::Close(handle_);
    handle_ = handle;
  }

 private:
  Type handle_ = Traits::Invalid();
};

struct FileHandleTraits {
  using Type = HANDLE;
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Type handle) { ::CloseHandle(handle); }
};
struct FindHandleTraits {
  using Type = HANDLE;
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Type handle) { ::FindClose(handle); }
};
struct KernelHandleTraits {
  using Type = HANDLE;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::CloseHandle(handle); }
};
struct RegistryKeyTraits {
  using Type = HKEY;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::RegCloseKey(handle); }
};
struct IconTraits {
  using Type = HICON;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::DestroyIcon(handle); }
};
struct MenuTraits {
  using Type = HMENU;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::DestroyMenu(handle); }
};
struct AcceleratorTableTraits {
  using Type = HACCEL;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::DestroyAcceleratorTable(handle); }
};

struct DcTraits {
  using Type = HDC;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::DeleteDC(handle); }
};

template <class HandleType>
struct GdiTraits {
  using Type = HandleType;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::DeleteObject(handle); }
};

using UniqueFile = UniqueHandle<FileHandleTraits>;
using UniqueFind = UniqueHandle<FindHandleTraits>;
using UniqueKernelHandle = UniqueHandle<KernelHandleTraits>;
using UniqueRegistryKey = UniqueHandle<RegistryKeyTraits>;
using UniqueIcon = UniqueHandle<IconTraits>;
using UniqueMenu = UniqueHandle<MenuTraits>;
using UniqueAcceleratorTable = UniqueHandle<AcceleratorTableTraits>;
using UniqueDc = UniqueHandle<DcTraits>;
using UniqueBitmap = UniqueHandle<GdiTraits<HBITMAP>>;
using UniqueBrush = UniqueHandle<GdiTraits<HBRUSH>>;
using UniqueFont = UniqueHandle<GdiTraits<HFONT>>;

// A COM object's reference.
struct ComRelease {
  template <class Interface>
  void operator()(Interface* object) const {
    object->Release();
  }
};
template <class Interface>
using ComPointer = std::unique_ptr<Interface, ComRelease>;

}  // namespace zq
