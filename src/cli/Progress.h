// The line that tells how far the work is: how much, how long still, and on what.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "engine/Clock.h"

namespace zq::cli {

// How much of all the work is done, from what the engine tells of the single items.
class WorkShare {
 public:
  // The lengths of the items in bytes, by number.
  explicit WorkShare(const std::vector<std::uint64_t>& itemBytes);

  // The share of one item, 0 to 1. An item never goes back.
  void Item(std::size_t number, double share);
  double Share() const;  // 0 to 1

 private:
  std::vector<double> weights_;
  std::vector<double> shares_;
  double total_ = 0;
  double done_ = 0;
};

// " 42%  2 min 10 s left  letters/a.txt", fit for that many columns.
std::string ProgressText(double share, std::uint64_t elapsedMilliseconds, const std::string& path,
                         std::size_t columns);

class ProgressLine {
 public:
  // `stream` is a terminal, or null for no line at all.
  ProgressLine(std::FILE* stream, engine::Clock& clock);
  ~ProgressLine() { Clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // Draws at most ten times a second.
  void Show(double share, const std::string& path);
  // Takes the line away, so that something else can be written there.
  void Clear();

 private:
  void Draw(const std::string& text);

  std::FILE* stream_;
  engine::Clock& clock_;
  engine::Clock::Time start_;
  engine::Clock::Time last_;
  bool drawnYet_ = false;
  std::size_t drawnColumns_ = 0;
};

}  // namespace zq::cli
