// Every message box of the program, as it has to be.
#include <array>

#include "e2e/walk/Inventory.h"

namespace zq::test {
namespace {

using Buttons = std::vector<std::string>;

const Buttons kOk{"OK"};
const Buttons kOkCancel{"OK", "Cancel"};
const Buttons kYesNo{"Yes", "No"};
const Buttons kYesNoCancel{"Yes", "No", "Cancel"};

constexpr BoxIcon kInformation = BoxIcon::Information;
constexpr BoxIcon kQuestion = BoxIcon::Question;
constexpr BoxIcon kExclamation = BoxIcon::Warning;
constexpr BoxIcon kStop = BoxIcon::Error;

constexpr std::string_view kHelpTitle = "Tarnwick! Error";
constexpr std::string_view kHelpUnused = "the program never asks for what brings it: tests/unit/help";

// clang-format off
const BoxRow kBoxes[] = {
    // The list.
    {"remove-item", "Remove Item", "Remove {} from your listing?", kQuestion, kYesNo},
    {"remove-nothing", "Remove Item",
     "No item is selected.  Select the item that you wish to remove from your listing.", kInformation, kOk},
    {"add-files-too-many", "Add Files",
     "The names of the selected files are more than can be taken at one time, and none was added.  Select fewer "
     "files, or drag them onto the list from Windows Explorer.", kExclamation, kOk,
     "the system's dialog would have to give out more names than its buffer holds, which takes minutes to select: "
     "CommandsTest"},

    // Jobs.
    {"job-save-question", "Save", "Save the current Wiping Job?", kQuestion, kYesNoCancel},
    {"job-delete", "Delete Job", "Are you sure you wish to delete the currently open Job?", kQuestion, kOkCancel},
    {"job-open-error", "Error", "An error was encountered trying to open the existing Zeroquill Job.",
     kExclamation, kOk},
    {"job-save-error", "Error",
     "An error was encountered trying to save the current wiping job.  Ensure that Zeroquill was installed with "
     "the proper permissions to create a Jobs sub folder under the main folder and can write files within the "
     "folder.", kExclamation, kOk},
    {"job-name", "Job Name",
     "One or more of the characters included in the job name are not allowed and are illegal characters for file "
     "names on the Windows operating system.\r\n\r\n"
     "Please name the job using only numbers or letters.", kExclamation, kOk},
    {"job-overwrite", "Overwrite Job",
     "A Zeroquill Job already exists by that name.  Do you wish to overwrite the existing Zeroquill Job?",
     kQuestion, kOkCancel},

    // Folder items.
    {"folder-improper-mask", "Improper Format",
     "It does not appear that the formatting of your file mask is correct.  File masks need to be defined "
     "properly to ensure only the files you want wiped will indeed be wiped.\r\n\r\n"
     "An example of a proper file mask would be *.doc (this would include all .doc files contained within the "
     "chosen folder).", kExclamation, kOk},
    {"folder-whole-drive", "Allowed Action",
     "You have selected a main root drive and defined the file mask to include ALL files.  This action cannot be "
     "performed by Zeroquill.  The program cannot wipe an entire drives contents.", kExclamation, kOk},
    {"folder-root-drive", "Main Root Drive Selected",
     "You have selected a main root drive.  It is highly suggested that you do not define a main root drive as a "
     "selected folder.\r\n\r\n"
     "Wiping files over a main root drive is an action that can cause serious problems with your computer if you "
     "are not fully aware of the file types your are wiping.  Continue with this selection?",
     kQuestion, kOkCancel},
    {"edit-whole-drive", "Allowed Action",
     "Your folder is a main root drive and you have defined the file mask to include ALL files.  This action "
     "cannot be performed by Zeroquill.  The program cannot wipe an entire drives contents.", kExclamation, kOk},

    // The wipe of a job.
    {"wipe-nothing-found", "No Items Found",
     "All listed items in your current Job were not found at their defined locations and may have been "
     "previously wiped.  The wipe operation cannot continue.", kInformation, kOk},
    {"wipe-question", "Wipe Operation",
     "This operation will securely wipe all available files and based on the settings, available folders contents "
     "as well.  Once the wipe operation is complete, the files will not be recoverable.\r\n\r\n"
     "Are you sure you wish to continue?", kQuestion, kOkCancel},
    {"wipe-cancel", "Cancel", "Cancel the current operation?", kQuestion, kYesNo},
    {"wipe-complete", "Wipe Operation",
     "The wipe operation is now complete.\r\n\r\n"
     "Do you wish to review the report for the current operation?", kQuestion, kYesNo},
    {"wipe-cancelled", "Wipe Operation",
     "The wipe operation was cancelled so all items may not have been completely processed.  You can review the "
     "report for more details.\r\n\r\n"
     "Do you wish to review the report for the current operation?", kQuestion, kYesNo},

    // The wipe of free space.
    {"space-question", "Wipe Operation",
     "This operation will securely wipe the free space on drive {}.  The operation can take some time for larger "
     "drives.\r\n\r\n"
     "Are you sure you wish to continue?", kQuestion, kOkCancel},
    {"space-cancel", "Cancel", "Cancel the current operation?", kQuestion, kYesNo},
    {"space-cancelled", "Cancelled", "The drive wipe operation was cancelled.", kInformation, kOk},
    {"space-error", "Error",
     "An error was encountered wiping drive {}.\r\n\r\n"
     "Error Details: {}", kInformation, kOk},
    {"space-complete", "Free Space Wipe Complete",
     "Drive {} has been successfully wiped.\r\n\r\n"
     "Details:\r\n\r\n"
     "Wipe Started:  {}\r\n"
     "Wipe Ended:  {}\r\n"
     "Security Level:  {}\r\n"
     "Free Space Wiped:  {} KB", kInformation, kOk},

    // The report.
    {"report-none", "No Report", "There is no report available to view at this time.", kInformation, kOk},
    {"report-no-printer", "Print",
     "There is no printer that the report could be printed on.  Add a printer in Windows' settings, and print "
     "again.", kExclamation, kOk},
    {"report-not-printed", "Print", "The report was not printed completely.{}", kExclamation, kOk,
     "a printer has to fail: Printing.PrinterThatCannotPrintIsTold"},
    {"report-no-printer-opened", "Print", "The printer could not be opened, error {}.", kExclamation, kOk,
     "a printer has to go while the system's dialog shows it: by reading alone"},
    {"report-clipboard-in-use", "Copy",
     "The text was not copied, because another program is using the clipboard.  Copy it again.", kExclamation, kOk},
    {"report-no-memory-to-copy", "Copy", "The text was not copied.  There is not enough memory for it.",
     kExclamation, kOk, "the system would have to be out of memory: by reading alone"},

    // The Bin.
    {"bin-busy", "Operation",
     "An operation is currently being performed.  The QuickWipe Bin cannot be closed.", kExclamation, kOk,
     "no message gets through while the Bin wipes, so that nothing from outside comes by then: "
     "CommandsTest.BusyBinIsNotToggledAndSaysSo"},

    // The companion's control.
    {"manager-launch-failed", "Error Loading",
     "An error was encountered trying to lauch the Zeroquill Explorer Manager.", kExclamation, kOk},
    {"manager-offer", "Explorer Manager", "Do you wish to launch the Zeroquill Explorer Manager now?", kQuestion,
     kYesNo},
    {"manager-offer-failed", "Error Loading",
     "An error was encountered trying to load the Zeroquill Explorer Manager.  The Manager should be loaded the "
     "next time you restart your system.", kExclamation, kOk},
    {"manager-remove", "Explorer Manager",
     "Shutting down the Zeroquill Explorer Manager will remove the right click menu integration with Windows as "
     "well as the Recycle Bin Wiping option.\r\n\r\n"
     "Are you sure you wish to remove the Manager from system startup?", kQuestion, kOkCancel},
    {"manager-shut-down-failed", "Error",
     "Zeroquill was unable to shut down the Explorer Manager automatically for this session of Windows.  To shut "
     "down the Manager from your System Tray, you can right click the Manager icon and choose the Exit option.",
     kExclamation, kOk,
     "the companion would have to run with higher rights, which the system here can't give it: "
     "ExplorerManagerTest.ShutDownThatTheSystemRefusesIsTold"},

    // Help.
    {"help-missing", "Zeroquill Help",
     "Unable to find the Zeroquill Help file.  Please reinstall Zeroquill to replace the Help system.",
     kExclamation, kOk},

    // The help's class can do more than the program asks of it, and its front end asks for nothing that fails.
    {"help-file-missing", kHelpTitle,
     "The file {} does not exist.\nPlease make sure that you have installed KLMB Help files", kStop, kOk, kHelpUnused},
    {"help-no-form", kHelpTitle,
     "The HHDisplayContents method was called without a form being specified, while HHShowOnTop was set to True.",
     kStop, kOk, kHelpUnused},
    {"help-no-help-file", kHelpTitle, "{} is not a valid HTML Help file.", kStop, kOk, kHelpUnused},
    {"help-no-popup-file", kHelpTitle,
     "The file specified as the text popup source, '{}', is not a valid popup file.", kStop, kOk, kHelpUnused},
    {"help-registered", kHelpTitle,
     "The file {} is already registered.  HHRegister will not be run as no action need be taken.", kInformation,
     kOk, kHelpUnused},
    {"help-no-path-to-register", kHelpTitle, "Cannot register {} without having a supplied path.\"", kStop, kOk,
     kHelpUnused},
    {"help-register-error", kHelpTitle, "HTML Help Class: HHRegister Error", kStop, kOk, kHelpUnused},
    {"help-not-registered", kHelpTitle,
     "The file {} is not registered.  HHUnRegister will not be run as no action need be taken.", kInformation, kOk,
     kHelpUnused},
    {"help-no-viewer", kHelpTitle, "Hhctrl.ocx is not registered.  Please install HTML Help.", kStop, kOk,
     kHelpUnused},
    {"help-viewer-lost", kHelpTitle,
     "Hhctrl.ocx is not in its registered location.  Please reinstall HTML Help.", kStop, kOk, kHelpUnused},
    {"help-no-browser", kHelpTitle, "Shdocvw.dll is not registered.  Please install Internet Explorer.", kStop, kOk,
     kHelpUnused},
    {"help-browser-lost", kHelpTitle,
     "Internet Explorer is not in its registered location.  Please reinstall Internet Explorer.", kStop, kOk,
     kHelpUnused},

    // What nobody on the way handles.
    {"run-time-error", "Zeroquill", "Run-time error '{}':\r\n\r\n{}", kStop, kOk},
};
// clang-format on

}  // namespace

std::span<const BoxRow> Boxes() {
  return kBoxes;
}

const BoxRow& BoxOfId(std::string_view id) {
  for (const BoxRow& row : kBoxes) {
    if (row.id == id) return row;
  }
  throw DriverError("no box '" + std::string(id) + "' among Boxes()");
}

}  // namespace zq::test
