#include <gtest/gtest.h>

#include "platform/PathPlace.h"

namespace zq {
namespace {

TEST(PathPlace, DrivesAndSharesAreWhereThingsAreDestroyed) {
  for (const char* path : {"C:\\", "c:\\papers", "Z:/papers/a.txt", "\\\\server\\share",
                           "\\\\server\\share\\a", "//server/share/a", "\\\\?\\C:\\papers",
                           "\\\\?\\UNC\\server\\share\\a", "\\\\?\\unc\\server\\share"}) {
    EXPECT_TRUE(BeginsOnADriveOrShare(path)) << path;
    EXPECT_FALSE(BeginsInAnotherNameSpace(path)) << path;
  }
}

TEST(PathPlace, OtherNameSpacesLieOutside) {
  for (const char* path :
       {"\\\\?\\unix\\tmp\\a.txt", "\\\\?\\unix\\", "\\\\.\\unix\\tmp", "//?/unix/tmp", "\\\\.\\C:\\papers",
        "\\\\.\\PhysicalDrive0", "\\\\?\\Volume{4c1b02c1-d990-11dc-99ae-806e6f6e6963}\\a",
        "\\\\?\\GLOBALROOT\\Device\\x", "\\\\?\\UNC\\server", "\\\\?\\", "\\??\\C:\\a"}) {
    EXPECT_FALSE(BeginsOnADriveOrShare(path)) << path;
    EXPECT_TRUE(BeginsInAnotherNameSpace(path)) << path;
  }
}

TEST(PathPlace, AServerAloneAndWhatDependsOnACurrentFolderIsNeither) {
  for (const char* path :
       {"\\\\", "\\\\server", "\\\\server\\", "\\\\server\\\\a", "\\\\\\a", "", "a.txt", "papers\\a.txt",
        "..", "\\papers", "C:", "C:papers", "1:\\a", "::\\", "\u00e9:\\a", "unix"}) {
    EXPECT_FALSE(BeginsOnADriveOrShare(path)) << path;
    EXPECT_FALSE(BeginsInAnotherNameSpace(path)) << path;
  }
}

}  // namespace
}  // namespace zq
