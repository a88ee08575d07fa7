// Message boxes on Windows.
#pragma once

#include "platform/MessageBoxes.h"

namespace zq {

class Win32MessageBoxes final : public MessageBoxes {
 public:
  MessageAnswer Show(const Message& message) override;
};

}  // namespace zq
