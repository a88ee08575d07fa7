// RunTimeError is the failure that nobody on the way handles: it ends the process with a report of
// its number and description.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace zq {

// The numbers that the program raises, each with the description that its report shows.
enum class ErrorNumber : int {
  InvalidProcedureCall = 5,
  Overflow = 6,
  OutOfMemory = 7,
  SubscriptOutOfRange = 9,
  TypeMismatch = 13,
  BadFileNameOrNumber = 52,
  FileNotFound = 53,
  DeviceIoError = 57,
  DiskFull = 61,
  InputPastEndOfFile = 62,
  PermissionDenied = 70,
  DiskNotReady = 71,
  PathFileAccessError = 75,
  PathNotFound = 76,
  ObjectVariableNotSet = 91,
  ObjectWasUnloaded = 364,
  ElementNotFound = 35601,
};

// The text that belongs to `number`, without a full stop, as the report shows it.
const char* DescriptionOf(ErrorNumber number);

class RunTimeError : public std::runtime_error {
 public:
  explicit RunTimeError(ErrorNumber number) : std::runtime_error(DescriptionOf(number)), number_(number) {}

  ErrorNumber Number() const { return number_; }

 private:
  ErrorNumber number_;
};

// The text of the report: "Run-time error '6':", an empty line, the description. Line ends CR LF.
std::string ReportText(const RunTimeError& error);

// `value` as a 16-bit signed number. Raises Overflow when it doesn't fit: counters over rows and
// lists are 16-bit, and their bounds are limits of the program.
std::int16_t ToInt16(std::int64_t value);

}  // namespace zq
