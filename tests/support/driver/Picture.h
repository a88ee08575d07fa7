// Pictures of windows as they are on the screen.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/driver/Window.h"

namespace zq::test {

// Pixels of a part of the screen, rows from the top, each 0x00RRGGBB.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  std::uint32_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
  bool operator==(const Picture&) const = default;
};

// What lies outside the screen is left out: a maximised window's edges do.
Picture GrabScreen(RECT screen);

// When a picture is taken: Still, once the window is painted and has stopped changing, after a second
// at the latest; AtOnce, as soon as it is painted, for a window that moves on and may be gone soon.
enum class When { Still, AtOnce };

// The window as it lies on the screen.
Picture GrabWindow(Window window, When when = When::Still);

// Writes the window's picture as `name`.png into the folder that the environment variable
// ZQ_PICTURES names, and gives the file's path; "" when the variable isn't set. Throws a DriverError
// when the file can't be written.
std::string TakePicture(Window window, std::string_view name, When when = When::Still);

void SavePng(const Picture& picture, const std::string& path);

}  // namespace zq::test
