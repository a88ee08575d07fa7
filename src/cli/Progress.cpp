#include "cli/Progress.h"

#include <algorithm>
#include <cmath>

#include "cli/Shown.h"
#include "cli/System.h"

namespace zq::cli {
namespace {

constexpr engine::Clock::Time kBetween{100'000};

// What opening, renaming and removing an item costs, told as bytes: or a thousand empty files would be no
// work at all.
constexpr double kItemBytes = 32 * 1024;

// Before that, an estimate would be a guess.
constexpr std::uint64_t kFirstEstimateMilliseconds = 2'000;
constexpr double kFirstEstimateShare = 0.005;

}  // namespace

WorkShare::WorkShare(const std::vector<std::uint64_t>& itemBytes) : shares_(itemBytes.size(), 0.0) {
  weights_.reserve(itemBytes.size());
  for (const std::uint64_t bytes : itemBytes) {
    weights_.push_back(kItemBytes + static_cast<double>(bytes));
    total_ += weights_.back();
  }
}

void WorkShare::Item(std::size_t number, double share) {
  const double gain = std::clamp(share, 0.0, 1.0) - shares_.at(number);
  if (gain <= 0) return;
  shares_[number] += gain;
  done_ += gain * weights_[number];
}

double WorkShare::Share() const {
  return total_ > 0 ? std::min(done_ / total_, 1.0) : 1.0;
}

std::string ProgressText(double share, std::uint64_t elapsedMilliseconds, const std::string& path,
                         std::size_t columns) {
  char percent[16];
  // Rounded down: 100% stands for the end alone.
  std::snprintf(percent, sizeof percent, "%3d%%", static_cast<int>(std::floor(share * 100)));
  std::string text = percent;
  if (elapsedMilliseconds >= kFirstEstimateMilliseconds && share >= kFirstEstimateShare) {
    const double left = static_cast<double>(elapsedMilliseconds) * (1 - share) / share / 1000;
    text += "  " + ShownSeconds(static_cast<std::uint64_t>(std::ceil(left))) + " left";
  }
  text += "  ";
  if (text.size() >= columns) return text.substr(0, columns);
  return text + Shortened(Shown(path), columns - text.size());
}

ProgressLine::ProgressLine(std::FILE* stream, engine::Clock& clock)
    : stream_(stream), clock_(clock), start_(clock.Now()), last_(start_) {
}

void ProgressLine::Show(double share, const std::string& path) {
  if (stream_ == nullptr) return;
  const engine::Clock::Time now = clock_.Now();
  if (drawnYet_ && now - last_ < kBetween) return;
  drawnYet_ = true;
  last_ = now;
  // One column is left free: a full line makes some terminals go to the next.
  const auto columns = static_cast<std::size_t>(std::max(TerminalWidth(stream_) - 1, 1));
  Draw(ProgressText(share, static_cast<std::uint64_t>((now - start_).count() / 1000), path, columns));
}

void ProgressLine::Clear() {
  if (stream_ == nullptr || drawnColumns_ == 0) return;
  Draw("");
  std::fputc('\r', stream_);
  std::fflush(stream_);
}

// Written over with blanks, which every terminal understands.
void ProgressLine::Draw(const std::string& text) {
  std::string line = '\r' + text;
  const std::size_t columns = ColumnsAtMost(text);
  if (columns < drawnColumns_) line.append(drawnColumns_ - columns, ' ');
  drawnColumns_ = columns;
  std::fwrite(line.data(), 1, line.size(), stream_);
  std::fflush(stream_);
}

}  // namespace zq::cli
