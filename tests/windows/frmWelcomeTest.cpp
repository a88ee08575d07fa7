#include <gtest/gtest.h>

#include "Driving.h"
#include "ancillary/frmWelcome.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {
namespace {

class frmWelcomeTest : public testing::Test {
 protected:
  void SetUp() override {
    state_.AppFolder = "C:\\Zeroquill\\";
    fake_.files.AddFolder("C:\\Zeroquill");
    Default<frmWelcome>::SetFactory([this] { return std::make_unique<frmWelcome>(state_, fake_.platform); });
  }
  void TearDown() override {
    if (Default<frmWelcome>::IsLoaded()) Default<frmWelcome>::Touch().Unload();
    Form::DestroyClosed();
  }

  FakePlatform fake_;
  AppState state_;
};

TEST_F(frmWelcomeTest, EscClosesItAndItHasBeenSeen) {
  Form& form = Default<frmWelcome>::Touch();
  form.Show();
  PostKey(form, VK_ESCAPE);
  EXPECT_FALSE(Default<frmWelcome>::IsLoaded());
  EXPECT_EQ(fake_.files.Read("C:\\Zeroquill\\sfrun.dat"), "");
}

}  // namespace
}  // namespace zq::test
