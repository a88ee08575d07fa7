#include "controls/Pictures.h"

#include <uxtheme.h>
#include <wincodec.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace zq {
namespace {

HINSTANCE Module() {
  return ::GetModuleHandleA(nullptr);
}

// A top-down bitmap of 32 bits a pixel, cleared to transparent.
UniqueBitmap MakeAlphaBitmap(int width, int height, void** bits) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  return UniqueBitmap(::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, bits, nullptr, 0));
}

// Menus of the Aero themes blend a bitmap's alpha channel. Other looks copy its pixels, and what is
// transparent would be black.
bool MenusBlendAlpha() {
  wchar_t themeFile[MAX_PATH] = {};
  if (!::IsAppThemed() || FAILED(::GetCurrentThemeName(themeFile, static_cast<int>(std::size(themeFile)),
                                                       nullptr, 0, nullptr, 0)))
    return false;
  const std::wstring_view path = themeFile;
  const std::wstring_view name = path.substr(path.rfind(L'\\') + 1);
  constexpr std::wstring_view kAero = L"aero";
  return ::CompareStringOrdinal(name.data(), static_cast<int>(std::min(name.size(), kAero.size())),
                                kAero.data(), static_cast<int>(kAero.size()), TRUE) == CSTR_EQUAL;
}

}  // namespace

UniqueIcon LoadPicture(const char* name, int pixels) {
  return UniqueIcon(
      static_cast<HICON>(::LoadImageA(Module(), name, IMAGE_ICON, pixels, pixels, LR_DEFAULTCOLOR)));
}

UniqueBitmap LoadMenuPicture(const char* name, int pixels) {
  const UniqueIcon icon = LoadPicture(name, pixels);
  if (!icon) return {};
  void* bits = nullptr;
  UniqueBitmap bitmap = MakeAlphaBitmap(pixels, pixels, &bits);
  if (!bitmap) return {};
  const HDC memory = ::CreateCompatibleDC(nullptr);
  const HGDIOBJ before = ::SelectObject(memory, bitmap.Get());
  const HBRUSH background = MenusBlendAlpha() ? nullptr : ::GetSysColorBrush(COLOR_MENU);
  if (background) {
    const RECT whole{0, 0, pixels, pixels};
    ::FillRect(memory, &whole, background);
  }
  ::DrawIconEx(memory, 0, 0, icon.Get(), pixels, pixels, 0, nullptr, DI_NORMAL);
  ::SelectObject(memory, before);
  ::DeleteDC(memory);
  if (background) {
    ::GdiFlush();
    auto* pixel = static_cast<std::uint32_t*>(bits);
    for (int i = 0; i < pixels * pixels; ++i) pixel[i] |= 0xFF000000;
  }
  return bitmap;
}

UniqueBitmap LoadPng(const char* name) {
  const HRSRC resource = ::FindResourceA(Module(), name, MAKEINTRESOURCEA(10));  // RT_RCDATA
  const HGLOBAL loaded = resource ? ::LoadResource(Module(), resource) : nullptr;
  auto* data = loaded ? static_cast<BYTE*>(::LockResource(loaded)) : nullptr;
  if (!data) return {};

  IWICImagingFactory* factoryRaw = nullptr;
  if (FAILED(::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                IID_PPV_ARGS(&factoryRaw))))
    return {};
  const ComPointer<IWICImagingFactory> factory(factoryRaw);
  IWICStream* streamRaw = nullptr;
  if (FAILED(factory->CreateStream(&streamRaw))) return {};
  const ComPointer<IWICStream> stream(streamRaw);
  if (FAILED(stream->InitializeFromMemory(data, ::SizeofResource(Module(), resource)))) return {};
  IWICBitmapDecoder* decoderRaw = nullptr;
  if (FAILED(
          factory->CreateDecoderFromStream(stream.get(), nullptr, WICDecodeMetadataCacheOnLoad, &decoderRaw)))
    return {};
  const ComPointer<IWICBitmapDecoder> decoder(decoderRaw);
  IWICBitmapFrameDecode* frameRaw = nullptr;
  if (FAILED(decoder->GetFrame(0, &frameRaw))) return {};
  const ComPointer<IWICBitmapFrameDecode> frame(frameRaw);
  IWICFormatConverter* converterRaw = nullptr;
  if (FAILED(factory->CreateFormatConverter(&converterRaw))) return {};
  const ComPointer<IWICFormatConverter> converter(converterRaw);
  UINT width = 0;
  UINT height = 0;
  if (FAILED(converter->Initialize(frame.get(), GUID_WICPixelFormat32bppPBGRA, WICBitmapDitherTypeNone,
                                   nullptr, 0, WICBitmapPaletteTypeCustom)) ||
      FAILED(converter->GetSize(&width, &height)))
    return {};
  void* bits = nullptr;
  UniqueBitmap bitmap = MakeAlphaBitmap(static_cast<int>(width), static_cast<int>(height), &bits);
  if (!bitmap ||
      FAILED(converter->CopyPixels(nullptr, width * 4, width * 4 * height, static_cast<BYTE*>(bits))))
    return {};
  return bitmap;
}

}  // namespace zq
