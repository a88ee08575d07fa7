// UniqueHandle: owns a handle of the system and closes it once.
#pragma once

#include <windows.h>

#include <utility>

#include "debug/LiveCount.h"

namespace zq {

// Traits give `Type`, `Invalid()`, `Close(Type)` and the kind that it is counted as.
template <class Traits>
class UniqueHandle {
 public:
  using Type = typename Traits::Type;

  UniqueHandle() = default;
  explicit UniqueHandle(Type handle) { Take(handle); }
  UniqueHandle(UniqueHandle&& other) noexcept { Take(other.Release()); }
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) Reset(other.Release());
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  Type Get() const { return handle_; }
  explicit operator bool() const { return handle_ != Traits::Invalid(); }
  Type Release() {
    Count(-1);
    return std::exchange(handle_, Traits::Invalid());
  }
  void Reset(Type handle = Traits::Invalid()) {
    const Type former = Release();
    if (former != Traits::Invalid()) Traits::Close(former);
    Take(handle);
  }

 private:
  void Take(Type handle) {
    handle_ = handle;
    Count(1);
  }
  void Count(int change) const {
    if (handle_ != Traits::Invalid()) debug::Count(Traits::kKind, change);
  }

  Type handle_ = Traits::Invalid();
};

struct FileHandleTraits {
  using Type = HANDLE;
  static constexpr debug::Kind kKind = debug::Kind::File;
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Type handle) { ::CloseHandle(handle); }
};
struct FindHandleTraits {
  using Type = HANDLE;
  static constexpr debug::Kind kKind = debug::Kind::Search;
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Type handle) { ::FindClose(handle); }
};
struct KernelHandleTraits {
  using Type = HANDLE;
  static constexpr debug::Kind kKind = debug::Kind::KernelHandle;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::CloseHandle(handle); }
};
struct RegistryKeyTraits {
  using Type = HKEY;
  static constexpr debug::Kind kKind = debug::Kind::RegistryKey;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::RegCloseKey(handle); }
};
struct IconTraits {
  using Type = HICON;
  static constexpr debug::Kind kKind = debug::Kind::Icon;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::DestroyIcon(handle); }
};
struct MenuTraits {
  using Type = HMENU;
  static constexpr debug::Kind kKind = debug::Kind::Menu;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::DestroyMenu(handle); }
};
struct AcceleratorTableTraits {
  using Type = HACCEL;
  static constexpr debug::Kind kKind = debug::Kind::AcceleratorTable;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::DestroyAcceleratorTable(handle); }
};
struct GlobalMemoryTraits {
  using Type = HGLOBAL;
  static constexpr debug::Kind kKind = debug::Kind::GlobalMemory;
  static Type Invalid() { return nullptr; }
  static void Close(Type memory) { ::GlobalFree(memory); }
};

struct DcTraits {
  using Type = HDC;
  static constexpr debug::Kind kKind = debug::Kind::DeviceContext;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { ::DeleteDC(handle); }
};

template <class HandleType, debug::Kind kind>
struct GdiTraits {
  using Type = HandleType;
  static constexpr debug::Kind kKind = kind;
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
using UniqueGlobalMemory = UniqueHandle<GlobalMemoryTraits>;
using UniqueDc = UniqueHandle<DcTraits>;
using UniqueBitmap = UniqueHandle<GdiTraits<HBITMAP, debug::Kind::Bitmap>>;
using UniqueBrush = UniqueHandle<GdiTraits<HBRUSH, debug::Kind::Brush>>;
using UniqueFont = UniqueHandle<GdiTraits<HFONT, debug::Kind::Font>>;

template <class Interface>
struct ComTraits {
  using Type = Interface*;
  static constexpr debug::Kind kKind = debug::Kind::HeldReference;
  static Type Invalid() { return nullptr; }
  static void Close(Type object) { object->Release(); }
};

// A COM object's reference.
template <class Interface>
class ComPointer {
 public:
  ComPointer() = default;
  explicit ComPointer(Interface* object) : object_(object) {}

  Interface* get() const { return object_.Get(); }
  Interface* operator->() const { return object_.Get(); }
  Interface& operator*() const { return *object_.Get(); }
  explicit operator bool() const { return static_cast<bool>(object_); }
  void reset(Interface* object = nullptr) { object_.Reset(object); }

 private:
  UniqueHandle<ComTraits<Interface>> object_;
};

}  // namespace zq
