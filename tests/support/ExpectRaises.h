// ExpectRaises: checks that an action ends in a run-time error of one number.
#pragma once

#include <gtest/gtest.h>

#include "platform/RunTimeError.h"

namespace zq::test {

template <typename Action>
void ExpectRaises(ErrorNumber number, Action action) {
  try {
    action();
  } catch (const RunTimeError& error) {
    EXPECT_EQ(static_cast<int>(error.Number()), static_cast<int>(number));
    return;
  }
  ADD_FAILURE() << "no run-time error; expected " << static_cast<int>(number);
}

}  // namespace zq::test
