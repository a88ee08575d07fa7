// Pictures for the pages of the help, of windows that other tests show only with what they are about.
#include <gtest/gtest.h>

#include <string>

#include "MainFormTest.h"
#include "support/driver/Picture.h"

namespace zq::test {
namespace {

using HelpPicturesTest = MainFormTest;

TEST_F(HelpPicturesTest, MainWindowWithAJob) {
  fake_.files.AddFolder("C:\\Zeroquill\\Jobs");
  fake_.files.AddFile("C:\\Zeroquill\\Jobs\\Customers.zqj",
                      "\"N/A\"\r\n\"[FOLDERS]\"\r\n"
                      "\"C:\\Customers\\Scans\"\r\n\"*.*\"\r\n\"Yes\"\r\n"
                      "\"C:\\Temp\"\r\n\"*.tmp\"\r\n\"No\"\r\n"
                      "\"[FILES]\"\r\n"
                      "\"C:\\Customers\\addresses.mdb\"\r\n"
                      "\"C:\\Customers\\contract signed.pdf\"\r\n"
                      "\"C:\\Customers\\notes.txt\"\r\n"
                      "\"C:\\Customers\\offer.doc\"\r\n");
  for (const char* folder : {"C:\\Temp", "C:\\Customers", "C:\\Customers\\Scans"})
    fake_.files.AddFolder(folder);
  fake_.files.AddFile("C:\\Customers\\addresses.mdb", std::string(909971, 'a'));
  fake_.files.AddFile("C:\\Customers\\contract signed.pdf", std::string(311004, 'a'));
  fake_.files.AddFile("C:\\Customers\\offer.doc", std::string(52000, 'a'));
  fake_.process.commandLine = "\"C:\\Zeroquill\\Jobs\\Customers.zqj\"";
  Put({}, {.Width = 10710, .Height = 5600, .Left = 0, .Top = 0});
  frmMain& main = Open();
  main.Jobs().Select(1);
  ASSERT_EQ(main.Jobs().Count(), 6U);
  EXPECT_TRUE(main.Jobs().Row(5).Ghosted) << "of a file that is gone";
  TakePicture(Window(WindowOf(main)), "help-main");
}

}  // namespace
}  // namespace zq::test
