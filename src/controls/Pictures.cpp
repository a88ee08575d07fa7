#include "controls/Pictures.h"

#include <wincodec.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "controls/WindowDc.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

HINSTANCE Module() {
  return ::GetModuleHandleW(nullptr);
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

UniqueIcon LoadIconResource(const wchar_t* name, int pixels) {
  return UniqueIcon(
      static_cast<HICON>(::LoadImageW(Module(), name, IMAGE_ICON, pixels, pixels, LR_DEFAULTCOLOR)));
}

// A file among the resources; nothing where there is none of that name. It lies in memory as long as the
// process.
std::string_view ResourceBytes(const char* name) {
  const HRSRC resource = ::FindResourceW(Module(), ToWide(name).c_str(), RT_RCDATA);
  const HGLOBAL loaded = resource ? ::LoadResource(Module(), resource) : nullptr;
  const void* data = loaded ? ::LockResource(loaded) : nullptr;
  if (!data) return {};
  return {static_cast<const char*>(data), ::SizeofResource(Module(), resource)};
}

}  // namespace

UniqueIcon LoadPicture(const char* name, int pixels) {
  return LoadIconResource(ToWide(name).c_str(), pixels);
}

UniqueIcon LoadProgramIcon(int pixels) {
  return LoadIconResource(L"aaProgram", pixels);
}

UniqueBitmap LoadAlphaPicture(const char* name, int pixels, SIZE size, const PixelChange& change) {
  const UniqueIcon icon = LoadPicture(name, pixels);
  if (!icon) return {};
  void* bits = nullptr;
  UniqueBitmap bitmap = MakeAlphaBitmap(size.cx, size.cy, &bits);
  if (!bitmap) return {};
  const UniqueDc memory(::CreateCompatibleDC(nullptr));
  {
    const SelectedObject selected(memory.Get(), bitmap.Get());
    if (!::DrawIconEx(memory.Get(), 0, 0, icon.Get(), pixels, pixels, 0, nullptr, DI_NORMAL)) return {};
  }
  ::GdiFlush();
  if (change)
    change({static_cast<std::uint32_t*>(bits),
            static_cast<std::size_t>(size.cx) * static_cast<std::size_t>(size.cy)});
  return bitmap;
}

UniqueBitmap LoadPng(const char* name) {
  const std::string_view file = ResourceBytes(name);
  if (file.empty()) return {};

  IWICImagingFactory* factoryRaw = nullptr;
  if (FAILED(::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                IID_PPV_ARGS(&factoryRaw))))
    return {};
  const ComPointer<IWICImagingFactory> factory(factoryRaw);
  IWICStream* streamRaw = nullptr;
  if (FAILED(factory->CreateStream(&streamRaw))) return {};
  const ComPointer<IWICStream> stream(streamRaw);
  // The stream only reads.
  auto* data = reinterpret_cast<BYTE*>(const_cast<char*>(file.data()));
  if (FAILED(stream->InitializeFromMemory(data, static_cast<DWORD>(file.size())))) return {};
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

std::shared_ptr<const PictureData> LoadDocumentPicture(const char* name, Twips naturalWidth,
                                                       Twips naturalHeight) {
  auto picture = std::make_shared<PictureData>();
  picture->png = std::string(ResourceBytes(name));
  picture->naturalWidth = naturalWidth;
  picture->naturalHeight = naturalHeight;
  const UniqueBitmap bitmap = LoadPng(name);
  DIBSECTION section{};
  if (!bitmap || ::GetObjectW(bitmap.Get(), sizeof section, &section) != sizeof section) return picture;
  ::GdiFlush();
  const auto* pixels = static_cast<const std::uint32_t*>(section.dsBm.bmBits);
  picture->width = section.dsBm.bmWidth;
  picture->height = section.dsBm.bmHeight;
  picture->pixels.assign(pixels, pixels + static_cast<std::ptrdiff_t>(picture->width) * picture->height);
  // Onto white: with premultiplied alpha, what is missing is added to each channel.
  for (std::uint32_t& pixel : picture->pixels) pixel += (0xFF - (pixel >> 24)) * 0x010101U;
  return picture;
}

}  // namespace zq
