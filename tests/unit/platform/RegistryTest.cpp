#include <gtest/gtest.h>

#include "platform/Registry.h"
#include "support/fakes/FakeRegistry.h"

namespace zq {
namespace {

using namespace std::string_literals;

std::string ReadStored(std::uint32_t type, const std::string& bytes) {
  test::FakeRegistry registry;
  registry.Set(RegistryHive::LocalMachine, "Key", "Value", {type, bytes});
  return ReadRegistryString(registry, RegistryHive::LocalMachine, "Key", "Value");
}

TEST(ReadRegistryString, EndsTheTextAtItsFirstNull) {
  EXPECT_EQ(ReadStored(kRegistryString, "text\0"s), "text");
  EXPECT_EQ(ReadStored(kRegistryString, "text"), "text");
  EXPECT_EQ(ReadStored(kRegistryString, "te\0xt\0"s), "te");
  EXPECT_EQ(ReadStored(kRegistryString, "\0text"s), "");
  EXPECT_EQ(ReadStored(kRegistryString, ""), "");
  EXPECT_EQ(ReadStored(kRegistryString, "  text  \0"s), "  text  ");
}

TEST(ReadRegistryString, TakesNoOtherTypeThanAPlainString) {
  for (std::uint32_t type : {0U, 2U, 3U, 4U, 7U, 11U}) EXPECT_EQ(ReadStored(type, "text\0"s), "") << type;
}

TEST(ReadRegistryString, GivesNothingForAMissingValue) {
  test::FakeRegistry registry;
  registry.Set(RegistryHive::LocalMachine, "Key", "Value", {kRegistryString, "text"});
  EXPECT_EQ(ReadRegistryString(registry, RegistryHive::LocalMachine, "Key", "Other"), "");
  EXPECT_EQ(ReadRegistryString(registry, RegistryHive::LocalMachine, "Other", "Value"), "");
  EXPECT_EQ(ReadRegistryString(registry, RegistryHive::CurrentUser, "Key", "Value"), "");
}

}  // namespace
}  // namespace zq
