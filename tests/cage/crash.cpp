// A program that ends as it is told to: `crash` by a fault in the second of two tests, `fill` after filling
// drive D:, `lost` in silence at its first start in this folder, else with 3.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

// Bytes that fit into a new file on drive D:, up to a limit far above that of the tests' drive.
unsigned long long FillDrive() {
  constexpr unsigned long long kLimitBytes = 64u << 20;
  HANDLE file = ::CreateFileA("D:\\filler", GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return 0;
  const std::string block(65536, 'x');
  unsigned long long bytes = 0;
  DWORD written = 0;
  while (bytes < kLimitBytes &&
         ::WriteFile(file, block.data(), static_cast<DWORD>(block.size()), &written, nullptr) != 0 &&
         written != 0) {
    bytes += written;
  }
  ::CloseHandle(file);
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "crash") == 0) {
    std::puts("[ RUN      ] Two.First\n[       OK ] Two.First (0 ms)\n[ RUN      ] Two.Second");
    std::fflush(stdout);
    int* volatile nowhere = nullptr;
    *nowhere = 1;
  }
  if (argc > 1 && std::strcmp(argv[1], "fill") == 0) {
    std::printf("%llu\n", FillDrive());
    return 0;
  }
  if (argc > 1 && std::strcmp(argv[1], "lost") == 0) {
    // Made at the first start, found at the second.
    HANDLE mark = ::CreateFileA("lost", GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    if (mark != INVALID_HANDLE_VALUE) return 5;
    std::puts("found");
  }
  return 3;
}
