#include <algorithm>

#include "ReportStage.h"
#include "controls/document/TextMeasure.h"
#include "reports/frmPrintReport.h"
#include "support/ExpectRaises.h"
#include "support/document/RtfText.h"

namespace zq::test {
namespace {

using testing::HasSubstr;

using frmPrintReportTest = ReportStage;

TEST_F(frmPrintReportTest, LoadMakesTheDocumentHiddenAndWritesTheRichText) {
  WriteReport(Example());
  const frmPrintReport& form = Default<frmPrintReport>::Touch();
  EXPECT_FALSE(form.IsVisible());
  EXPECT_EQ(CaptionOf(Default<frmPrintReport>::Touch()), "Zeroquill Report");
  const std::string text = form.VS1.Content().text;
  EXPECT_THAT(text, HasSubstr("Zeroquill Report - Weekly papers - 11/16/2026 4:30:12 AM\n"));
  EXPECT_THAT(text, HasSubstr("C:\\letter.doc - Access denied\n"));
  std::string read = RtfText(ReadFileBytes(RtfPath())).Text();
  std::erase(read, '\t');
  EXPECT_EQ(read, "\n" + text) << "the logo stands in a paragraph of its own";
  EXPECT_EQ(form.VS1.Zoom(), 100);
}

TEST_F(frmPrintReportTest, LoadLeavesTheListsEmpty) {
  WriteReport(Example());
  state.ReportErrors.Add("of a former run");
  Default<frmPrintReport>::Touch();
  EXPECT_EQ(state.ReportFolders.Count(), 0);
  EXPECT_EQ(state.ReportFiles.Count(), 0);
  EXPECT_EQ(state.ReportErrors.Count(), 0);
}

TEST_F(frmPrintReportTest, LoadedWindowKeepsItsDocumentAndItsFile) {
  WriteReport(Example());
  Default<frmPrintReport>::Touch();
  const std::string before = ReadFileBytes(RtfPath());
  ReportData other = Example();
  other.jobName = "Another";
  WriteReport(other);
  EXPECT_THAT(Default<frmPrintReport>::Touch().VS1.Content().text, HasSubstr("Weekly papers"));
  EXPECT_EQ(ReadFileBytes(RtfPath()), before);

  Default<frmPrintReport>::Touch().Unload();
  EXPECT_THAT(Default<frmPrintReport>::Touch().VS1.Content().text, HasSubstr("Another"));
  EXPECT_NE(ReadFileBytes(RtfPath()), before);
}

TEST_F(frmPrintReportTest, SizeOfTheSettingIsTheTexts) {
  for (const int size : {8, 10, 12}) {
    state.Settings.ReportFontSize = static_cast<std::int16_t>(size);
    WriteReport(Example());
    const frmPrintReport& form = Default<frmPrintReport>::Touch();
    EXPECT_EQ(StyleAt(form.VS1.Content(), 0).points, static_cast<float>(size));
    EXPECT_EQ(form.VS1.Content().header.points, 10);
    EXPECT_THAT(ReadFileBytes(RtfPath()),
                HasSubstr("\\f0\\fs" + std::to_string(2 * size) + "\\b\\cf1 Zeroquill"));
    Default<frmPrintReport>::Touch().Unload();
  }
}

// What each byte's cut gives is the reader's own test; the window's load is tried in all parts of the file.
TEST_F(frmPrintReportTest, DataCutAnywhereIsReadOrRefused) {
  const std::string whole = EncodeReport(Example());
  const std::size_t thirdField = whole.find("\"[FOLDERS]");
  const auto load = [&](std::size_t end) {
    SCOPED_TRACE(end);
    fake.files.Delete(DataPath());
    fake.files.AddFile(DataPath(), whole.substr(0, end));
    if (end <= thirdField) {
      ExpectRaises(ErrorNumber::InputPastEndOfFile, [] { Default<frmPrintReport>::Touch(); });
    } else {
      Default<frmPrintReport>::Touch().Unload();
    }
    EXPECT_FALSE(Default<frmPrintReport>::IsLoaded()) << "a load that fails leaves no window";
    Form::DestroyClosed();
  };
  constexpr std::size_t kStep = 11;
  for (std::size_t end = 0; end < whole.size(); end += kStep) load(end);
  for (const std::size_t end : {thirdField, thirdField + 1, whole.size()}) load(end);
}

TEST_F(frmPrintReportTest, DataThatIsNotThereOrTooLongFailsTheLoad) {
  ExpectRaises(ErrorNumber::FileNotFound, [] { Default<frmPrintReport>::Touch(); });
  ReportData report;
  report.files.assign(40000, "x");
  WriteReport(report);
  ExpectRaises(ErrorNumber::Overflow, [] { Default<frmPrintReport>::Touch(); });
  EXPECT_FALSE(Default<frmPrintReport>::IsLoaded());
}

TEST_F(frmPrintReportTest, RichTextThatIsLockedOrReadOnlyIsPassedOver) {
  WriteReport(Example());
  scratch.Make("Report\\Report.rtf", "the older one", FILE_ATTRIBUTE_READONLY);
  const auto filesInFolder = [this] {
    int count = 0;
    WIN32_FIND_DATAA data{};
    const HANDLE find = ::FindFirstFileA((state.AppFolder + "Report\\*").c_str(), &data);
    do ++count;
    while (::FindNextFileA(find, &data));
    ::FindClose(find);
    return count;
  };
  const int before = filesInFolder();
  Default<frmPrintReport>::Touch().Unload();
  EXPECT_EQ(ReadFileBytes(RtfPath()), "the older one");
  EXPECT_EQ(filesInFolder(), before);

  ::SetFileAttributesA(RtfPath().c_str(), FILE_ATTRIBUTE_NORMAL);
  {
    const HANDLE held = ::CreateFileA(RtfPath().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    Default<frmPrintReport>::Touch().Unload();
    ::CloseHandle(held);
  }
  EXPECT_EQ(ReadFileBytes(RtfPath()), "the older one");
  EXPECT_EQ(filesInFolder(), before);
  EXPECT_TRUE(fake.boxes.shown.empty());

  Default<frmPrintReport>::Touch().Unload();
  EXPECT_THAT(ReadFileBytes(RtfPath()), testing::StartsWith("{\\rtf1"));
  EXPECT_EQ(filesInFolder(), before);
}

TEST_F(frmPrintReportTest, ControlFillsTheWindowButNotAMinimisedOne) {
  WriteReport(Example());
  frmPrintReport& form = Default<frmPrintReport>::Touch();
  form.Show();
  ::SetWindowPos(form.Handle(), nullptr, 0, 0, 940, 500, SWP_NOMOVE | SWP_NOZORDER);
  RECT client{};
  ::GetClientRect(form.Handle(), &client);
  const RECT filled = form.VS1.Place();
  EXPECT_EQ(filled.left, 0);
  EXPECT_EQ(filled.top, 0);
  EXPECT_EQ(filled.right, client.right);
  EXPECT_EQ(filled.bottom, client.bottom);
  ::SendMessageW(form.Handle(), WM_SIZE, SIZE_MINIMIZED, 0);
  EXPECT_EQ(form.VS1.Place().bottom, filled.bottom);
}

TEST_F(frmPrintReportTest, CloseGivesUpTheInstance) {
  WriteReport(Example());
  Default<frmPrintReport>::Touch().Show();
  Close(Default<frmPrintReport>::Touch());
  EXPECT_FALSE(Default<frmPrintReport>::IsLoaded());
}

// What a report looks like in the system's own reader of rich text.
class RichEdit {
 public:
  RichEdit() {
    ::LoadLibraryW(L"riched20.dll");
    hwnd_ = ::CreateWindowExW(0, L"RichEdit20W", L"", WS_POPUP | ES_MULTILINE, 0, 0, 600, 600, nullptr,
                              nullptr, nullptr, nullptr);
  }
  ~RichEdit() { ::DestroyWindow(hwnd_); }
  RichEdit(const RichEdit&) = delete;
  RichEdit& operator=(const RichEdit&) = delete;

  bool Load(const std::string& rtf) {
    rest_ = rtf;
    EditStream stream{reinterpret_cast<DWORD_PTR>(this), 0, &RichEdit::Read};
    constexpr UINT kStreamIn = WM_USER + 73;
    constexpr WPARAM kRtf = 2;
    ::SendMessageW(hwnd_, WM_USER + 53, 0, 0x7FFFFFF);  // EM_EXLIMITTEXT
    ::SendMessageW(hwnd_, kStreamIn, kRtf, reinterpret_cast<LPARAM>(&stream));
    return stream.error == 0;
  }
  std::wstring Text() const {
    std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(hwnd_)) + 1, L'\0');
    text.resize(
        static_cast<std::size_t>(::GetWindowTextW(hwnd_, text.data(), static_cast<int>(text.size()))));
    return text;
  }
  struct Format {
    LONG halfPoints;
    bool bold;
    COLORREF colour;
    std::wstring font;
  };
  // Of the first character of `text`.
  Format FormatOf(const std::wstring& text) const {
    FindText find{{0, -1}, text.c_str(), {0, 0}};
    const auto at = static_cast<LONG>(
        ::SendMessageW(hwnd_, WM_USER + 124, 1, reinterpret_cast<LPARAM>(&find)));  // EM_FINDTEXTEXW, FR_DOWN
    EXPECT_GE(at, 0);
    const LONG range[2] = {at, at + 1};
    ::SendMessageW(hwnd_, WM_USER + 55, 0, reinterpret_cast<LPARAM>(range));  // EM_EXSETSEL
    CharFormat format{};
    format.size = sizeof format;
    ::SendMessageW(hwnd_, WM_USER + 58, 1, reinterpret_cast<LPARAM>(&format));  // EM_GETCHARFORMAT
    return {format.height / 10, (format.effects & 1) != 0, format.colour, format.face};
  }

 private:
#pragma pack(push, 4)
  struct EditStream {
    DWORD_PTR cookie;
    DWORD error;
    DWORD(CALLBACK* read)(DWORD_PTR, BYTE*, LONG, LONG*);
  };
#pragma pack(pop)
  struct FindText {
    LONG range[2];
    const wchar_t* text;
    LONG found[2];
  };
  struct CharFormat {
    UINT size;
    DWORD mask, effects;
    LONG height, offset;
    COLORREF colour;
    BYTE charSet, pitch;
    WCHAR face[32];
  };
  static DWORD CALLBACK Read(DWORD_PTR cookie, BYTE* buffer, LONG wanted, LONG* count) {
    auto* self = reinterpret_cast<RichEdit*>(cookie);
    const std::size_t part = std::min(static_cast<std::size_t>(wanted), self->rest_.size());
    self->rest_.copy(reinterpret_cast<char*>(buffer), part);
    self->rest_.erase(0, part);
    *count = static_cast<LONG>(part);
    return 0;
  }
  HWND hwnd_ = nullptr;
  std::string rest_;
};

TEST_F(frmPrintReportTest, SystemsOwnReaderShowsTheSameTextSizesAndColours) {
  state.Settings.ReportFontSize = 12;
  WriteReport(Example());
  const std::string text = Default<frmPrintReport>::Touch().VS1.Content().text;
  RichEdit reader;
  ASSERT_TRUE(reader.Load(ReadFileBytes(RtfPath())));

  // Line ends and what a reader makes of cells are its own affair, and so is the logo.
  const auto words = [](std::wstring all) {
    std::erase_if(all, [](wchar_t c) { return c == L'\r' || c == L'\n' || c == L'\t' || c == 0xFFFC; });
    while (!all.empty() && all.front() == L' ') all.erase(0, 1);
    return all;
  };
  EXPECT_EQ(words(reader.Text()), words(ToWide(text)));

  const RichEdit::Format title = reader.FormatOf(L"Zeroquill Report");
  EXPECT_EQ(title.halfPoints, 24);
  EXPECT_TRUE(title.bold);
  EXPECT_EQ(title.font, L"Verdana");
  const RichEdit::Format heading = reader.FormatOf(L"Folders Included");
  EXPECT_TRUE(heading.bold);
  EXPECT_EQ(heading.colour, 0xFF0000U);
  EXPECT_EQ(reader.FormatOf(L"Errors During").colour, 0x0000FFU);
  const RichEdit::Format path = reader.FormatOf(L"C:\\Old Papers");
  EXPECT_FALSE(path.bold);
  EXPECT_EQ(path.halfPoints, 24);
}

TEST_F(frmPrintReportTest, SystemsOwnReaderShowsAllCharactersThatStandAlone) {
  ReportData report = Example();
  // Wine's reader ends where it has to shape some scripts: these are left to others.
  report.files = LinesOfCharacters();
  std::erase_if(report.files, [](const std::string& line) { return NeedsShaping(line); });
  ASSERT_GT(report.files.size(), 80U);
  WriteReport(report);
  const std::string text = Default<frmPrintReport>::Touch().VS1.Content().text;
  RichEdit reader;
  ASSERT_TRUE(reader.Load(ReadFileBytes(RtfPath())));
  // The sign that stands for the logo is a character, too.
  const auto words = [](std::wstring all) {
    std::erase_if(
        all, [](wchar_t c) { return c == L'\r' || c == L'\n' || c == L'\t' || c == L' ' || c == 0xFFFC; });
    return all;
  };
  const std::wstring read = words(reader.Text());
  const std::wstring wanted = words(ToWide(text));
  const auto [first, second] = std::mismatch(read.begin(), read.end(), wanted.begin(), wanted.end());
  EXPECT_EQ(read.size(), wanted.size());
  EXPECT_TRUE(second == wanted.end()) << "at " << second - wanted.begin() << ": " << std::hex
                                      << static_cast<unsigned>(first == read.end() ? 0 : *first)
                                      << ", wanted " << static_cast<unsigned>(*second);
}

}  // namespace
}  // namespace zq::test
