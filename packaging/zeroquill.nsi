; The installer: for one user, without elevation. Made by package.sh, which gives VERSION, NUMBERS (four of them), PROGRAM
; (the folder of what is installed), PICTURES (that of the icon and the picture) and OUT.
Unicode true
Target amd64-unicode
!include FileFunc.nsh
!include LogicLib.nsh
!include MUI2.nsh
!include WinVer.nsh

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Zeroquill"

Name "Zeroquill"
OutFile "${OUT}"
; The program keeps its jobs and settings in its own folder, so that has to be one that the user may write to.
InstallDir "$LOCALAPPDATA\Programs\Zeroquill"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
RequestExecutionLevel user
ManifestSupportedOS Win10
ManifestDPIAware true
SetCompressor /SOLID lzma
CRCCheck force
ShowInstDetails nevershow
ShowUninstDetails nevershow
BrandingText "Zeroquill ${VERSION}"
VIProductVersion "${NUMBERS}"
VIFileVersion "${NUMBERS}"
VIAddVersionKey "CompanyName" "The Zeroquill developers"
VIAddVersionKey "FileDescription" "Zeroquill's installer"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "© 2026 The Zeroquill developers"
VIAddVersionKey "ProductName" "Zeroquill"
VIAddVersionKey "ProductVersion" "${VERSION}"

!define CLASSES "Software\Classes"
!define JOB_CLASS "Zeroquill.Job"
; Exit codes of a silent run that did nothing. 1 and 2 are NSIS's own: cancelled, aborted.
!define EXIT_IN_USE 3
!define EXIT_NOT_WRITABLE 4
!define EXIT_OLD_WINDOWS 5
!define EXIT_FILLERS 6

!define MUI_ICON "${PICTURES}\ico\zeroquill.ico"
!define MUI_UNICON "${PICTURES}\ico\zeroquill.ico"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${PICTURES}\bmp\setup.bmp"
!define MUI_ABORTWARNING

!insertmacro MUI_PAGE_LICENSE "${PROGRAM}\LICENSE"
!define MUI_COMPONENTSPAGE_SMALLDESC
!insertmacro MUI_PAGE_COMPONENTS
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE LeaveFolder
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\Zeroquill.exe"
!define MUI_FINISHPAGE_RUN_TEXT "&Start Zeroquill"
!define MUI_FINISHPAGE_TEXT_LARGE
!define MUI_FINISHPAGE_TEXT "Zeroquill is on your computer, in its own folder.$\r$\n$\r$\nWhat it wipes is gone for good: there is no undo."
!insertmacro MUI_PAGE_FINISH

!insertmacro MUI_UNPAGE_CONFIRM
!define MUI_PAGE_CUSTOMFUNCTION_SHOW un.ShowComponents
!insertmacro MUI_UNPAGE_COMPONENTS
!insertmacro MUI_UNPAGE_INSTFILES

!insertmacro MUI_LANGUAGE "English"

; Windows opens no program that runs for writing. A wipe that is under way is not to be ended by an installer, so who
; runs one is asked to close it.
!macro AskToClose UN
Function ${UN}IsInUse
  Exch $0
  Push $1
  StrCpy $1 "$INSTDIR\$0"
  StrCpy $0 0
  ${If} ${FileExists} "$1"
    ClearErrors
    FileOpen $1 "$1" a
    ; To ask for the mark takes it away.
    ${If} ${Errors}
      StrCpy $0 1
    ${Else}
      FileClose $1
    ${EndIf}
  ${EndIf}
  Pop $1
  Exch $0
FunctionEnd

Function ${UN}AskToClose
  Push $0
  Push $1
  ${Do}
    StrCpy $1 ""
    Push "Zeroquill.exe"
    Call ${UN}IsInUse
    Pop $0
    ${If} $0 = 1
      StrCpy $1 "Zeroquill"
    ${EndIf}
    Push "ZQExMan.exe"
    Call ${UN}IsInUse
    Pop $0
    ${If} $0 = 1
      StrCpy $1 "The Explorer Manager (its icon in the notification area has Exit)"
    ${EndIf}
    Push "zqwipe.exe"
    Call ${UN}IsInUse
    Pop $0
    ${If} $0 = 1
      StrCpy $1 "zqwipe"
    ${EndIf}
    ${If} $1 == ""
      ${Break}
    ${EndIf}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$1 is running. Close it, and press Retry." /SD IDCANCEL IDRETRY +3
    SetErrorLevel ${EXIT_IN_USE}
    Quit
  ${Loop}
  Pop $1
  Pop $0
FunctionEnd
!macroend
!insertmacro AskToClose ""
!insertmacro AskToClose "un."

Function .onInit
  SetShellVarContext current
  ${IfNot} ${AtLeastWin10}
    MessageBox MB_OK|MB_ICONSTOP "Zeroquill needs Windows 10 or later." /SD IDOK
    SetErrorLevel ${EXIT_OLD_WINDOWS}
    Quit
  ${EndIf}
FunctionEnd

; Into $0: 1 if the user may write into $INSTDIR. A folder that isn't there yet is made.
Function IsWritable
  ClearErrors
  CreateDirectory "$INSTDIR"
  GetTempFileName $0 "$INSTDIR"
  ${If} ${Errors}
    StrCpy $0 0
  ${Else}
    Delete "$0"
    StrCpy $0 1
  ${EndIf}
FunctionEnd

Function LeaveFolder
  Call IsWritable
  ${If} $0 = 0
    MessageBox MB_OK|MB_ICONEXCLAMATION "You may not write into this folder. Zeroquill keeps its jobs and settings beside it: choose another one."
    Abort
  ${EndIf}
FunctionEnd

Section "Zeroquill" SectionProgram
  SectionIn RO
  Call IsWritable
  ${If} $0 = 0
    SetErrorLevel ${EXIT_NOT_WRITABLE}
    Quit
  ${EndIf}
  Call AskToClose
  SetOutPath "$INSTDIR"
  File "${PROGRAM}\Zeroquill.exe"
  File "${PROGRAM}\ZQExMan.exe"
  File "${PROGRAM}\zqwipe.exe"
  File "${PROGRAM}\Zeroquill.chm"
  File "${PROGRAM}\LICENSE"
  File "${PROGRAM}\CLI11-LICENSE.txt"
  WriteUninstaller "$INSTDIR\Uninstall.exe"

  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "Zeroquill"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "The Zeroquill developers"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\Zeroquill.exe"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
  SectionGetSize ${SectionProgram} $0
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0
SectionEnd

Section "Entry in the Start menu" SectionStartMenu
  CreateShortcut "$SMPROGRAMS\Zeroquill.lnk" "$INSTDIR\Zeroquill.exe"
SectionEnd

; The program opens a job when its command line, which is one text, holds the program's own folder and ".zqj". So the
; whole path is handed over, in quotes, which it takes off. A job in another folder is no job to it.
Section "Saved jobs (.zqj) open with Zeroquill" SectionJobs
  WriteRegStr HKCU "${CLASSES}\.zqj" "" "${JOB_CLASS}"
  WriteRegStr HKCU "${CLASSES}\${JOB_CLASS}" "" "Zeroquill job"
  WriteRegStr HKCU "${CLASSES}\${JOB_CLASS}\DefaultIcon" "" "$INSTDIR\Zeroquill.exe,-1"
  WriteRegStr HKCU "${CLASSES}\${JOB_CLASS}\shell\open\command" "" '"$INSTDIR\Zeroquill.exe" "%1"'
  Call TellShell
SectionEnd

!macro TellShell UN
; What opens which kind of file has changed (SHCNE_ASSOCCHANGED).
Function ${UN}TellShell
  System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
FunctionEnd
!macroend
!insertmacro TellShell ""
!insertmacro TellShell "un."

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${SectionProgram} "The program, its Explorer Manager, zqwipe for the command line, and the help."
  !insertmacro MUI_DESCRIPTION_TEXT ${SectionStartMenu} "Zeroquill in the Start menu."
  !insertmacro MUI_DESCRIPTION_TEXT ${SectionJobs} "A saved job in the program's folder opens with a double click."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Section "un.Zeroquill" UnSectionProgram
  SectionIn RO
  ; A folder that somebody stands in stays.
  SetOutPath "$TEMP"
  Call un.AskToClose
  ; Its record is all that leads to what a wipe of free space left on a drive when it was killed.
  ${If} ${FileExists} "$INSTDIR\FreeSpace.dat"
    MessageBox MB_YESNO|MB_ICONEXCLAMATION|MB_DEFBUTTON2 "A wipe of free space was cut short, and its files still fill the drive. Zeroquill removes them when it is started.$\r$\n$\r$\nUninstall it all the same?" /SD IDNO IDYES +3
    SetErrorLevel ${EXIT_FILLERS}
    Quit
    Delete "$INSTDIR\FreeSpace.dat"
  ${EndIf}

  ; Only of this installation: another one may have come after it.
  ReadRegStr $0 HKCU "${CLASSES}\${JOB_CLASS}\shell\open\command" ""
  ${If} $0 == '"$INSTDIR\Zeroquill.exe" "%1"'
    ReadRegStr $0 HKCU "${CLASSES}\.zqj" ""
    ${If} $0 == "${JOB_CLASS}"
      DeleteRegValue HKCU "${CLASSES}\.zqj" ""
      DeleteRegKey /ifempty HKCU "${CLASSES}\.zqj"
    ${EndIf}
    DeleteRegKey HKCU "${CLASSES}\${JOB_CLASS}"
    Call un.TellShell
  ${EndIf}
  ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $0 == "$INSTDIR"
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
    Delete "$SMPROGRAMS\Zeroquill.lnk"
  ${EndIf}
  ; That the Explorer Manager starts with Windows was written with an administrator's rights, and goes with them alone.
  ReadRegStr $0 HKLM "Software\Microsoft\Windows\CurrentVersion\Run" "Zeroquill Explorer Manager"
  ${If} $0 == "$INSTDIR\ZQExMan.exe"
    DeleteRegValue HKLM "Software\Microsoft\Windows\CurrentVersion\Run" "Zeroquill Explorer Manager"
  ${EndIf}

  Delete "$INSTDIR\Zeroquill.exe"
  Delete "$INSTDIR\ZQExMan.exe"
  Delete "$INSTDIR\zqwipe.exe"
  Delete "$INSTDIR\Zeroquill.chm"
  Delete "$INSTDIR\LICENSE"
  Delete "$INSTDIR\CLI11-LICENSE.txt"
  Delete "$INSTDIR\Settings.dat"
  Delete "$INSTDIR\Settings2.dat"
  Delete "$INSTDIR\Zeroquill.dsl"
  Delete "$INSTDIR\sfrun.dat"
  ; Where they are empty.
  RMDir "$INSTDIR\Jobs"
  RMDir "$INSTDIR\Report"
  Delete "$INSTDIR\Uninstall.exe"
  RMDir "$INSTDIR"
SectionEnd

; What the user has made stays unless that is asked for, by its box or by /JOBS. Nothing but our own files goes.
Section /o "un.My saved jobs and the last report" UnSectionJobs
  Delete "$INSTDIR\Jobs\*.zqj"
  RMDir "$INSTDIR\Jobs"
  Delete "$INSTDIR\Report\Report.dat"
  Delete "$INSTDIR\Report\Report.rtf"
  RMDir "$INSTDIR\Report"
  RMDir "$INSTDIR"
SectionEnd

!insertmacro MUI_UNFUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${UnSectionProgram} "The programs, the help and the settings."
  !insertmacro MUI_DESCRIPTION_TEXT ${UnSectionJobs} "Deleted in the ordinary way. If nobody may read them, wipe them with Zeroquill first."
!insertmacro MUI_UNFUNCTION_DESCRIPTION_END

; What is left to remove needs no space that could be told.
Function un.ShowComponents
  FindWindow $0 "#32770" "" $HWNDPARENT
  GetDlgItem $0 $0 1023
  ShowWindow $0 ${SW_HIDE}
FunctionEnd

Function un.onInit
  SetShellVarContext current
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/JOBS" $1
  ${IfNot} ${Errors}
    !insertmacro SelectSection ${UnSectionJobs}
  ${EndIf}
FunctionEnd
