#include "core/state/AppState.h"

#include <utility>

#include "platform/RunTimeError.h"

namespace zq {

void ReportList::Add(std::string item) {
  ToInt16(static_cast<std::int64_t>(items_.size()) + 1);
  items_.push_back(std::move(item));
}

}  // namespace zq
