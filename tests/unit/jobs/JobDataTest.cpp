#include <gtest/gtest.h>

#include <string>

#include "jobs/JobData.h"
#include "support/ExpectRaises.h"

namespace zq {
namespace {

using test::ExpectRaises;

const JobData kJob{"16.11.2026 04:30:00",
                   {{"C:\\Papers", "*.doc", "Yes"}, {"C:\\Old, old", "*.*", "neither"}},
                   {"C:\\letter.doc", "C:\\Yes"}};
constexpr const char* kBytes =
    "\"16.11.2026 04:30:00\"\r\n\"[FOLDERS]\"\r\n\"C:\\Papers\"\r\n\"*.doc\"\r\n\"Yes\"\r\n"
    "\"C:\\Old, old\"\r\n\"*.*\"\r\n\"neither\"\r\n\"[FILES]\"\r\n\"C:\\letter.doc\"\r\n\"C:\\Yes\"\r\n";

TEST(JobData, StandsInBytesAndComesBackFromThem) {
  EXPECT_EQ(EncodeJob(kJob), kBytes);
  EXPECT_EQ(DecodeJob(kBytes), kJob);
  EXPECT_EQ(DecodeJobStamp(kBytes), kJob.lastWiping);
}

TEST(JobData, HasFilesOnlyBehindTheirMark) {
  EXPECT_EQ(DecodeJob("a\r\nany mark\r\n"), (JobData{"a", {}, {}}));
  EXPECT_EQ(DecodeJob("a\r\nany mark\r\n[FILES]\r\none\r\n[FILES]\r\n[FOLDERS]\r\n"),
            (JobData{"a", {}, {"one", "[FOLDERS]"}}));
  EXPECT_EQ(DecodeJob("a\r\nb\r\n[files]\r\n[FILES]\r\n[FILES]\r\n"),
            (JobData{"a", {{"[files]", "[FILES]", "[FILES]"}}, {}}))
      << "neither in another case nor inside a folder";
}

TEST(JobData, EndsInsideAFolderOrBeforeItsMarkOnlyByRaising) {
  for (const char* bytes : {"", "a", "a\r\nb\r\npath\r\n", "a\r\nb\r\npath\r\n*.*\r\n"})
    ExpectRaises(ErrorNumber::InputPastEndOfFile, [&] { DecodeJob(bytes); });
  EXPECT_EQ(DecodeJobStamp("a"), "a");
  ExpectRaises(ErrorNumber::InputPastEndOfFile, [] { DecodeJobStamp(""); });
}

}  // namespace
}  // namespace zq
