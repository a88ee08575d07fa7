// How a step of a wipe ends the wipe: by an exception inside the engine, so that no step that was
// forgotten to be checked can lead on to a removal. None of them leaves the engine.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/Device.h"

namespace zq::engine {

// A step has failed. `text` is one line: operation, path, the system's text and its number. `reason` is the
// same without the path.
struct Failure {
  std::int32_t code;
  std::string text;
  std::string reason = {};
  Trouble trouble = Trouble::Refused;
};

// The owner has called CancelOperation.
struct Cancelled {};

// Line breaks and other control characters become blanks, double quotes single ones: error texts stand in a
// report whose records are quoted lines.
std::string MakeOneLine(std::string_view text);

// "Opening C:\x.txt: Access is denied (5)", made one line.
Failure MakeFailure(const char* operation, const std::string& path, const Status& status);
Failure MakeFailure(const char* operation, const std::string& path, const std::string& reason);

// Throws the failure unless `status` is Ok.
void Require(const Status& status, const char* operation, const std::string& path);

}  // namespace zq::engine
