#include "platform/RunTimeError.h"

#include <limits>

namespace zq {
namespace {

struct Description {
  ErrorNumber number;
  const char* text;
};

constexpr Description kDescriptions[] = {
    {ErrorNumber::InvalidProcedureCall, "Invalid procedure call or argument"},
    {ErrorNumber::Overflow, "Overflow"},
    {ErrorNumber::OutOfMemory, "Out of memory"},
    {ErrorNumber::SubscriptOutOfRange, "Subscript out of range"},
    {ErrorNumber::TypeMismatch, "Type mismatch"},
    {ErrorNumber::BadFileNameOrNumber, "Bad file name or number"},
    {ErrorNumber::FileNotFound, "File not found"},
    {ErrorNumber::DeviceIoError, "Device I/O error"},
    {ErrorNumber::DiskFull, "Disk full"},
    {ErrorNumber::InputPastEndOfFile, "Input past end of file"},
    {ErrorNumber::PermissionDenied, "Permission denied"},
    {ErrorNumber::DiskNotReady, "Disk not ready"},
    {ErrorNumber::PathFileAccessError, "Path/File access error"},
    {ErrorNumber::PathNotFound, "Path not found"},
    {ErrorNumber::ObjectVariableNotSet, "Object variable not set"},
    {ErrorNumber::ObjectWasUnloaded, "Object was unloaded"},
    {ErrorNumber::ElementNotFound, "Element not found"},
};

}  // namespace

const char* DescriptionOf(ErrorNumber number) {
  for (const Description& description : kDescriptions) {
    if (description.number == number) return description.text;
  }
  return "Unknown error";
}

std::string ReportText(const RunTimeError& error) {
  return "Run-time error '" + std::to_string(static_cast<int>(error.Number())) + "':\r\n\r\n" + error.what();
}

std::int16_t ToInt16(std::int64_t value) {
  using Limits = std::numeric_limits<std::int16_t>;
  if (value < Limits::min() || value > Limits::max()) throw RunTimeError(ErrorNumber::Overflow);
  return static_cast<std::int16_t>(value);
}

}  // namespace zq
