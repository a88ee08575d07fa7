// PostScript printers in the prefix that the test runs in, which print into a file.
#pragma once

#include <string>
#include <string_view>

namespace zq::test {

enum class Colours { All, BlackAlone };

// A printer with the papers A4, which is its usual one, and Letter; it is there until the end of its scope.
class PostScriptPrinter {
 public:
  // What is printed comes out as the file `port`, written anew by each job. The first printer of all becomes
  // the default. Throws a DriverError with the call that failed.
  PostScriptPrinter(std::wstring name, std::string_view port, Colours colours);
  ~PostScriptPrinter();
  PostScriptPrinter(const PostScriptPrinter&) = delete;
  PostScriptPrinter& operator=(const PostScriptPrinter&) = delete;

  const std::wstring& Name() const { return name_; }
  void MakeDefault() const;

 private:
  const std::wstring name_;
};

}  // namespace zq::test
