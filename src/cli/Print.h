// What every run of zqwipe prints and asks, whatever it wipes.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace zq::cli {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using OwnedFile = std::unique_ptr<std::FILE, CloseFile>;

// Returns whether all of it was taken.
bool Write(std::FILE* stream, std::string_view text);

// One line on standard error, with the program's name before it.
void Complain(const std::string& text);

// Whether somebody sits there who can be asked.
bool CanAsk();

// Shows the question, and returns whether the answer is the word yes and nothing has come between.
bool AnswersYes(const std::string& question);

// The local time as the report shows it, and that of the world as a record needs it: 2026-11-01T09:30:00Z.
std::string LocalTime();
std::string WorldTime();

}  // namespace zq::cli
