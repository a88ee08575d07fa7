// Folder rows wiped by the program: what has gone from the disc, what is left of it, what the list and the
// report tell.
#include "e2e/Wiping.h"
#include "support/driver/Text.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;

class FolderRows : public WipingTest {
 protected:
  struct Row {
    std::string path;
    std::string mask;
    std::string subFolders;
  };

  // The path of a job with these folders.
  std::string MakeJob(const std::vector<Row>& rows) const {
    std::string bytes = "\"N/A\"\r\n\"[FOLDERS]\"\r\n";
    for (const Row& row : rows)
      bytes += Quoted(row.path) + "\r\n" + Quoted(row.mask) + "\r\n" + Quoted(row.subFolders) + "\r\n";
    return scratch_.Make("Zeroquill\\Jobs\\Folders.zqj", bytes + "\"[FILES]\"\r\n");
  }

  // A file whose content must be gone from the disc.
  std::string Secret(const std::string& name, std::uint32_t attributes = 0) const {
    return scratch_.Make(name, Marked(kMark, 20000), attributes);
  }
  // A file that must be left byte for byte.
  std::string Kept(const std::string& name) {
    kept_.push_back(scratch_.Make(name, Marked("to be kept ", 9000)));
    return kept_.back();
  }
  void ExpectKept() const {
    for (const std::string& path : kept_) {
      ASSERT_TRUE(PathExists(path)) << path;
      EXPECT_EQ(ReadFileBytes(path), Marked("to be kept ", 9000)) << path;
    }
  }

  // The report's lines behind the name of the job and the time.
  std::vector<std::string> ReportBody() const {
    std::vector<std::string> lines = Lines(ReadFileBytes(reportPath_));
    if (lines.size() < 5) throw DriverError("a report of too few lines");
    EXPECT_EQ(lines[0], "\"Folders\"");
    lines.erase(lines.begin(), lines.begin() + 2);
    return lines;
  }

  static bool IsGhosted(const MainWindow& main, int row) { return (main.list.State(row) & LVIS_CUT) != 0; }

 private:
  std::vector<std::string> kept_;
};

TEST_F(FolderRows, OfAllFilesWithSubFoldersGoWithAllThatIsInThem) {
  const std::vector<std::string> secrets{
      Secret("papers\\letter.txt"),
      Secret("papers\\no extension"),
      Secret("papers\\read-only.doc", FILE_ATTRIBUTE_READONLY),
      Secret("papers\\old\\hidden.dat", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM),
      Secret("papers\\old\\older\\Grüße ☃.txt"),
  };
  const std::string folder = scratch_ / "papers";
  ASSERT_TRUE(::CreateDirectoryA((folder + "\\empty").c_str(), nullptr));
  // What it held is gone under every name that it had.
  const std::string otherName = scratch_ / "another name.txt";
  ASSERT_TRUE(::CreateHardLinkA(otherName.c_str(), secrets[0].c_str(), nullptr));
  Kept("papers.txt");
  Kept("papers too\\letter.txt");

  const Program program(exe_, Quoted(MakeJob({{folder, "*.*", "Yes"}})));
  const MainWindow main(program);
  main.list.WaitRows(1);
  EXPECT_THAT(main.list.Row(0), ElementsAre(folder, "N/A", "*.*", "Yes"));
  EXPECT_FALSE(IsGhosted(main, 0));
  Confirm(program, main);
  Close(program, main, kComplete);
  TakePicture(main.window, "wiping-folder-gone");

  for (const std::string& path : secrets) EXPECT_FALSE(PathExists(path)) << path;
  EXPECT_FALSE(PathExists(folder));
  EXPECT_TRUE(PathExists(otherName));
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
  ExpectKept();
  EXPECT_TRUE(IsGhosted(main, 0));
  EXPECT_THAT(main.list.Row(0), ElementsAre(folder, "N/A", "*.*", "Yes"));
  EXPECT_EQ(main.Items(), "1 Item");
  EXPECT_THAT(ReportBody(), ElementsAre("\"[FOLDERS]\"", Quoted(folder), "\"[FILES]\"", "\"[ERRORS]\""));

  // The row is there, the folder isn't.
  main.PressTool("Wipe Now");
  program.WaitBox("No Items Found").Answer("OK");
}

TEST_F(FolderRows, StayWithTheirFoldersWhereMaskOrSubFoldersLeaveSomething) {
  const std::vector<std::string> secrets{
      Secret("flat\\letter.txt"),
      Secret("flat\\no extension"),
      Secret("docs\\one.doc"),
      Secret("docs\\read-only.doc", FILE_ATTRIBUTE_READONLY),
      Secret("deep docs\\one.doc"),
      Secret("deep docs\\inner\\two.doc"),
      Secret("deep docs\\inner\\inmost\\three.doc"),
  };
  Kept("flat\\inner\\letter.txt");  // all files, without sub-folders
  Kept("flat\\inner\\inmost\\one.doc");
  Kept("docs\\letter.txt");  // a mask, without sub-folders
  Kept("docs\\one.doc.txt");
  Kept("docs\\UPPER.DOC");  // a mask keeps upper and lower case apart
  Kept("docs\\inner\\two.doc");
  Kept("deep docs\\letter.txt");  // a mask, with sub-folders
  Kept("deep docs\\inner\\letter.txt");
  Kept("deep docs\\doc");
  const std::string flat = scratch_ / "flat";
  const std::string docs = scratch_ / "docs";
  const std::string deepDocs = scratch_ / "deep docs";

  const Program program(
      exe_, Quoted(MakeJob({{flat, "*.*", "No"}, {docs, "*.doc", "No"}, {deepDocs, "*.doc", "Yes"}})));
  const MainWindow main(program);
  main.list.WaitRows(3);
  Confirm(program, main);
  Close(program, main, kComplete);
  TakePicture(main.window, "wiping-folders-stay");

  for (const std::string& path : secrets) EXPECT_FALSE(PathExists(path)) << path;
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
  ExpectKept();
  EXPECT_TRUE(PathExists(deepDocs + "\\inner\\inmost")) << "an emptied folder beneath stays, too";
  for (int row = 0; row < 3; ++row) EXPECT_FALSE(IsGhosted(main, row)) << row;
  EXPECT_THAT(main.list.Row(0), ElementsAre(flat, "N/A", "*.*", "No"));
  EXPECT_THAT(main.list.Row(1), ElementsAre(docs, "N/A", "*.doc", "No"));
  EXPECT_THAT(main.list.Row(2), ElementsAre(deepDocs, "N/A", "*.doc", "Yes"));
  EXPECT_THAT(ReportBody(), ElementsAre("\"[FOLDERS]\"", Quoted(flat), Quoted(docs), Quoted(deepDocs),
                                        "\"[FILES]\"", "\"[ERRORS]\""));

  // The same rows wipe what has come into the folders since.
  const std::string again = Secret("docs\\again.doc");
  Confirm(program, main);
  Close(program, main, kComplete);
  EXPECT_FALSE(PathExists(again));
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
  ExpectKept();
}

TEST_F(FolderRows, OfAnyLengthOfPathAreThereAndGo) {
  std::string name = "papers";
  while (name.size() < 300) name += "\\" + std::string(40, 'p');
  const std::string secret = Secret(name + "\\letter.txt");
  const std::string folder = scratch_ / name;
  const Program program(exe_, Quoted(MakeJob({{folder, "*.*", "Yes"}})));
  const MainWindow main(program);
  main.list.WaitRows(1);
  EXPECT_FALSE(IsGhosted(main, 0));
  Confirm(program, main);
  Close(program, main, kComplete);
  EXPECT_FALSE(PathExists(secret));
  EXPECT_FALSE(PathExists(folder));
  EXPECT_TRUE(IsGhosted(main, 0));
  EXPECT_THAT(ReportBody(), ElementsAre("\"[FOLDERS]\"", Quoted(folder), "\"[FILES]\"", "\"[ERRORS]\""));
}

TEST_F(FolderRows, StayWhereAFileInThemIsInUse) {
  const std::string folder = scratch_ / "papers";
  const std::string letter = Secret("papers\\letter.txt");
  const std::string inner = Secret("papers\\inner\\letter.txt");
  const std::string locked = Kept("papers\\inner\\locked.txt");
  const Program program(exe_, Quoted(MakeJob({{folder, "*.*", "Yes"}})));
  const MainWindow main(program);
  main.list.WaitRows(1);
  {
    const HeldFile held(locked);
    Confirm(program, main);
    Close(program, main, kComplete);
  }
  EXPECT_FALSE(PathExists(letter));
  EXPECT_FALSE(PathExists(inner));
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
  ExpectKept();
  EXPECT_FALSE(IsGhosted(main, 0));
  EXPECT_THAT(main.list.Row(0), ElementsAre(folder, "N/A", "*.*", "Yes"));
  EXPECT_THAT(ReportBody(), ElementsAre("\"[FOLDERS]\"", Quoted(folder), "\"[FILES]\"", "\"[ERRORS]\"",
                                        ::testing::StartsWith("\"" + folder + " - ")));

  // Once the file is free, the same row takes the rest, and goes.
  Confirm(program, main);
  Close(program, main, kComplete);
  EXPECT_FALSE(PathExists(folder));
  EXPECT_TRUE(IsGhosted(main, 0));
}

// A folder past the drive letters, in the way that Wine has for it; made for the test, and removed with it.
class FolderPastTheDrives {
 public:
  FolderPastTheDrives() {
    static constexpr char kTemporary[] = "\\\\?\\unix\\tmp\\";
    path_ = kTemporary + ("zq-e2e-" + std::to_string(::GetCurrentProcessId()));
    if (!::CreateDirectoryW(ToWide(path_).c_str(), nullptr)) throw DriverError("can't make " + path_);
    WriteFileBytes(File(), Content());
    ::SetFileAttributesW(ToWide(File()).c_str(), FILE_ATTRIBUTE_READONLY);
  }
  ~FolderPastTheDrives() {
    ::SetFileAttributesW(ToWide(File()).c_str(), FILE_ATTRIBUTE_NORMAL);
    ::DeleteFileW(ToWide(File()).c_str());
    ::RemoveDirectoryW(ToWide(path_).c_str());
  }
  FolderPastTheDrives(const FolderPastTheDrives&) = delete;
  FolderPastTheDrives& operator=(const FolderPastTheDrives&) = delete;

  const std::string& Path() const { return path_; }
  std::string File() const { return path_ + "\\letter.txt"; }
  static std::string Content() { return Marked("of the machine's own ", 9000); }
  bool FileIsReadOnly() const {
    const DWORD attributes = ::GetFileAttributesW(ToWide(File()).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  }

 private:
  std::string path_;
};

TEST_F(FolderRows, PastTheDriveLettersFailBeforeAnythingIsTouched) {
  const FolderPastTheDrives outside;
  ASSERT_TRUE(outside.FileIsReadOnly());
  const std::string secret = Secret("papers\\letter.txt");
  const std::string folder = scratch_ / "papers";
  // As the program itself would never write it.
  const std::string job =
      scratch_.Make("Zeroquill\\Jobs\\Folders.zqj",
                    "\"N/A\"\r\n\"[FOLDERS]\"\r\n" + Quoted(outside.Path()) + "\r\n\"*.*\"\r\n\"Yes\"\r\n" +
                        Quoted(outside.Path()) + "\r\n\"*.txt\"\r\n\"No\"\r\n" + Quoted(folder) +
                        "\r\n\"*.*\"\r\n\"Yes\"\r\n\"[FILES]\"\r\n" + Quoted(outside.File()) + "\r\n");
  const Program program(exe_, Quoted(job));
  const MainWindow main(program);
  main.list.WaitRows(4);
  Confirm(program, main);
  Close(program, main, kComplete);

  EXPECT_EQ(ReadFileBytes(outside.File()), FolderPastTheDrives::Content());
  EXPECT_TRUE(outside.FileIsReadOnly()) << "the counting takes attributes off what is to be wiped";
  EXPECT_FALSE(PathExists(secret)) << "the other rows go on";
  for (const int row : {0, 1, 3}) EXPECT_FALSE(IsGhosted(main, row)) << row;
  const std::string reason =
      " - It lies neither on a drive with a letter nor in a share of a server, and was not touched.";
  EXPECT_THAT(ReportBody(), ElementsAre("\"[FOLDERS]\"", Quoted(outside.Path()), Quoted(outside.Path()),
                                        Quoted(folder), "\"[FILES]\"", Quoted(outside.File()), "\"[ERRORS]\"",
                                        Quoted(outside.Path() + reason), Quoted(outside.Path() + reason),
                                        Quoted(outside.File() + reason)));
}

}  // namespace
}  // namespace zq::test
