#include "PostScriptPrinter.h"

#include <windows.h>
#include <winspool.h>

#include <utility>

#include "platform/win32/Wide.h"
#include "support/driver/Driver.h"

namespace zq::test {
namespace {

// A description of a printer with two papers and no more than the driver asks for.
std::string Description(bool colours) {
  return std::string(
             "*PPD-Adobe: \"4.3\"\n"
             "*FormatVersion: \"4.3\"\n"
             "*FileVersion: \"1.0\"\n"
             "*LanguageVersion: English\n"
             "*LanguageEncoding: ISOLatin1\n"
             "*PCFileName: \"TEST.PPD\"\n"
             "*Product: \"(Test)\"\n"
             "*PSVersion: \"(3010.000) 0\"\n"
             "*Manufacturer: \"Test\"\n"
             "*ModelName: \"Test\"\n"
             "*ShortNickName: \"Test\"\n"
             "*NickName: \"Test\"\n"
             "*LanguageLevel: \"3\"\n"
             "*FileSystem: False\n"
             "*TTRasterizer: Type42\n"
             "*DefaultResolution: 600dpi\n") +
         (colours ? "*ColorDevice: True\n*DefaultColorSpace: RGB\n"
                  : "*ColorDevice: False\n*DefaultColorSpace: Gray\n") +
         "*OpenUI *PageSize: PickOne\n"
         "*DefaultPageSize: A4\n"
         "*PageSize A4/A4: \"<</PageSize[595 842]/ImagingBBox null>>setpagedevice\"\n"
         "*PageSize Letter/Letter: \"<</PageSize[612 792]/ImagingBBox null>>setpagedevice\"\n"
         "*CloseUI: *PageSize\n"
         "*OpenUI *PageRegion: PickOne\n"
         "*DefaultPageRegion: A4\n"
         "*PageRegion A4/A4: \"<</PageSize[595 842]/ImagingBBox null>>setpagedevice\"\n"
         "*PageRegion Letter/Letter: \"<</PageSize[612 792]/ImagingBBox null>>setpagedevice\"\n"
         "*CloseUI: *PageRegion\n"
         "*DefaultImageableArea: A4\n"
         "*ImageableArea A4/A4: \"12 12 583 830\"\n"
         "*ImageableArea Letter/Letter: \"12 12 600 780\"\n"
         "*DefaultPaperDimension: A4\n"
         "*PaperDimension A4/A4: \"595 842\"\n"
         "*PaperDimension Letter/Letter: \"612 792\"\n"
         "*DefaultFont: Courier\n"
         "*Font Courier: Standard \"(002.004S)\" Standard ROM\n"
         "*Font Helvetica: Standard \"(001.006S)\" Standard ROM\n";
}

void Check(bool result, const char* what) {
  if (!result) throw DriverError(std::string(what) + " failed with " + std::to_string(::GetLastError()));
}

// The driver's description has to lie where the system keeps drivers.
std::wstring AddDescription(const std::wstring& name, Colours colours) {
  wchar_t folder[MAX_PATH] = {};
  DWORD needed = 0;
  Check(::GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(folder), sizeof folder,
                                     &needed),
        "GetPrinterDriverDirectory");
  const std::wstring versionFolder = std::wstring(folder) + L"\\3";
  ::CreateDirectoryW(folder, nullptr);
  ::CreateDirectoryW(versionFolder.c_str(), nullptr);
  const std::wstring description = versionFolder + L"\\" + name + L".ppd";
  WriteFileBytes(FromWide(description), Description(colours == Colours::All));
  return description;
}

void AddDriver(const std::wstring& name, const std::wstring& description) {
  DRIVER_INFO_3W driver{};
  driver.cVersion = 3;
  driver.pName = const_cast<wchar_t*>(name.c_str());
  driver.pEnvironment = const_cast<wchar_t*>(L"Windows x64");
  driver.pDriverPath = const_cast<wchar_t*>(L"wineps.drv");
  driver.pDataFile = const_cast<wchar_t*>(description.c_str());
  driver.pConfigFile = const_cast<wchar_t*>(L"wineps.drv");
  driver.pDefaultDataType = const_cast<wchar_t*>(L"RAW");
  Check(::AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver),
                              APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY) ||
            ::GetLastError() == ERROR_PRINTER_DRIVER_ALREADY_INSTALLED,
        "AddPrinterDriverEx");
}

}  // namespace

PostScriptPrinter::PostScriptPrinter(std::wstring name, std::string_view port, Colours colours)
    : name_(std::move(name)) {
  AddDriver(name_, AddDescription(name_, colours));
  const std::wstring widePort = ToWide(port);
  PRINTER_INFO_2W printer{};
  printer.pPrinterName = const_cast<wchar_t*>(name_.c_str());
  printer.pPortName = const_cast<wchar_t*>(widePort.c_str());
  printer.pDriverName = const_cast<wchar_t*>(name_.c_str());
  printer.pPrintProcessor = const_cast<wchar_t*>(L"WinPrint");
  printer.pDatatype = const_cast<wchar_t*>(L"RAW");
  const HANDLE added = ::AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
  Check(added != nullptr, "AddPrinter");
  ::ClosePrinter(added);
  DWORD length = 0;
  ::GetDefaultPrinterW(nullptr, &length);
  if (length == 0) MakeDefault();
}

PostScriptPrinter::~PostScriptPrinter() {
  HANDLE printer = nullptr;
  if (!::OpenPrinterW(const_cast<wchar_t*>(name_.c_str()), &printer, nullptr)) return;
  ::DeletePrinter(printer);
  ::ClosePrinter(printer);
}

void PostScriptPrinter::MakeDefault() const {
  Check(::SetDefaultPrinterW(name_.c_str()), "SetDefaultPrinter");
}

}  // namespace zq::test
