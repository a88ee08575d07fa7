#include "support/driver/Picture.h"

#include <windows.h>
#include <wincodec.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "support/driver/Text.h"

namespace zq::test {
namespace {

// Throws a DriverError that names the step.
void Check(HRESULT result, const char* step) {
  if (FAILED(result)) {
    throw DriverError(std::string("the picture was not written: ") + step + " gives " +
                      std::to_string(static_cast<unsigned long>(result)));
  }
}

template <typename Interface>
class Com {
 public:
  Com() = default;
  ~Com() {
    if (pointer_ != nullptr) pointer_->Release();
  }
  Com(const Com&) = delete;
  Com& operator=(const Com&) = delete;
  Interface** Put() { return &pointer_; }
  Interface* Get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }

 private:
  Interface* pointer_ = nullptr;
};

}  // namespace

Picture GrabScreen(RECT screen) {
  const RECT whole{0, 0, ::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)};
  if (::IntersectRect(&screen, &screen, &whole) == 0) return {};
  Picture picture;
  picture.width = screen.right - screen.left;
  picture.height = screen.bottom - screen.top;
  picture.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));

  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = picture.width;
  info.bmiHeader.biHeight = -picture.height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  HDC from = ::GetDC(nullptr);
  HDC to = ::CreateCompatibleDC(from);
  void* bits = nullptr;
  HBITMAP bitmap = ::CreateDIBSection(from, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HGDIOBJ old = ::SelectObject(to, bitmap);
  ::BitBlt(to, 0, 0, picture.width, picture.height, from, screen.left, screen.top, SRCCOPY);
  ::GdiFlush();
  const auto* source = static_cast<const std::uint32_t*>(bits);
  std::transform(source, source + picture.pixels.size(), picture.pixels.begin(),
                 [](std::uint32_t pixel) { return pixel & 0x00FFFFFF; });
  ::SelectObject(to, old);
  ::DeleteObject(bitmap);
  ::DeleteDC(to);
  ::ReleaseDC(nullptr, from);
  return picture;
}

Picture GrabWindow(Window window, When when) {
  constexpr auto kPoll = std::chrono::milliseconds(5);
  constexpr auto kStill = std::chrono::milliseconds(60);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
  // It answers once it has done what was posted to it before; what it then still has to paint is
  // waited for by looking. One that is busy, and answers late, is looked at as it is.
  if (when == When::Still) window.Send(WM_NULL);
  Picture last;
  while (true) {
    Picture now = GrabScreen(window.ScreenRect());
    const bool painted = std::any_of(now.pixels.begin(), now.pixels.end(),
                                     [&](std::uint32_t pixel) { return pixel != now.pixels.front(); });
    if (painted && (when == When::AtOnce || now == last)) return now;
    if (std::chrono::steady_clock::now() >= end) return now;
    last = std::move(now);
    std::this_thread::sleep_for(when == When::AtOnce ? kPoll : kStill);
  }
}

void SavePng(const Picture& picture, const std::string& path) {
  const HRESULT started = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  struct Uninitialize {
    bool wanted;
    ~Uninitialize() {
      if (wanted) ::CoUninitialize();
    }
  } uninitialize{SUCCEEDED(started)};

  Com<IWICImagingFactory> factory;
  Check(::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                           reinterpret_cast<void**>(factory.Put())),
        "the imaging factory");
  Com<IWICStream> stream;
  Check(factory->CreateStream(stream.Put()), "the stream");
  Check(stream->InitializeFromFilename(ToWide(path).c_str(), GENERIC_WRITE), path.c_str());
  Com<IWICBitmapEncoder> encoder;
  Check(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.Put()), "the encoder");
  Check(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache), "the encoder's start");
  Com<IWICBitmapFrameEncode> frame;
  Check(encoder->CreateNewFrame(frame.Put(), nullptr), "the frame");
  Check(frame->Initialize(nullptr), "the frame's start");
  const auto width = static_cast<UINT>(picture.width);
  const auto height = static_cast<UINT>(picture.height);
  Check(frame->SetSize(width, height), "the size");
  WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
  Check(frame->SetPixelFormat(&format), "the pixel format");

  std::vector<BYTE> rows;
  rows.reserve(picture.pixels.size() * 3);
  for (std::uint32_t pixel : picture.pixels) {
    rows.push_back(static_cast<BYTE>(pixel));
    rows.push_back(static_cast<BYTE>(pixel >> 8));
    rows.push_back(static_cast<BYTE>(pixel >> 16));
  }
  Check(frame->WritePixels(height, width * 3, static_cast<UINT>(rows.size()), rows.data()), "the pixels");
  Check(frame->Commit(), "the frame's end");
  Check(encoder->Commit(), "the encoder's end");
}

std::string TakePicture(Window window, std::string_view name, When when) {
  const wchar_t* folder = ::_wgetenv(L"ZQ_PICTURES");
  if (folder == nullptr || *folder == L'\0') return "";
  const std::string path = ToUtf8(folder) + "\\" + std::string(name) + ".png";
  SavePng(GrabWindow(window, when), path);
  return path;
}

}  // namespace zq::test
