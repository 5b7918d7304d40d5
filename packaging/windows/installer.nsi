; The Windows installer: 64-bit, into Program Files, writing the uninstall key the
; program reads at start-up (InstallLocation, DisplayVersion) in the 64-bit view.
;
; makensis -DVERSION=2021.0922.1101 -DTVK_EXE=path\tvk.exe -DMANUAL=path\manual.pdf
;          -DOUTFILE=path\setup.exe [-DWINDOW_FILES=window-files.nsh] installer.nsi
;
; WINDOW_FILES, when given, is an include made by scripts/package.sh from a deployed
; Windows build of the window: WINDOW_INSTALL and WINDOW_UNINSTALL macros that install
; and remove exactly its files.

Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma

!define PRODUCT "Tavrin File Manager"
!define PUBLISHER "Morvel Services"
!define UNINSTALL_KEY "SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"
!define MENU_FOLDER "$SMPROGRAMS\${PRODUCT}"

!ifdef WINDOW_FILES
    !include "${WINDOW_FILES}"
    !define MAIN_EXE "TavrinFileManager.exe"
!else
    !define MAIN_EXE "tvk.exe"
!endif

Name "${PRODUCT}"
OutFile "${OUTFILE}"
; The program asks for administrator rights itself; installing for all users needs them.
RequestExecutionLevel admin
InstallDir "$PROGRAMFILES64\${PRODUCT}"
; An update goes where the first installation went.
InstallDirRegKey HKLM "${UNINSTALL_KEY}" "InstallLocation"
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${PRODUCT}"
VIAddVersionKey "CompanyName" "${PUBLISHER}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "${PRODUCT} Setup"
VIAddVersionKey "LegalCopyright" "${PUBLISHER}"

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

Section "Install"
    SetRegView 64
    SetShellVarContext all
    SetOutPath "$INSTDIR"
    File "/oname=tvk.exe" "${TVK_EXE}"
    File "/oname=User's Manual.pdf" "${MANUAL}"
!ifdef WINDOW_FILES
    !insertmacro WINDOW_INSTALL
!endif
    WriteUninstaller "$INSTDIR\Uninstall.exe"

    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\${MAIN_EXE}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1

    CreateDirectory "${MENU_FOLDER}"
!ifdef WINDOW_FILES
    CreateShortcut "${MENU_FOLDER}\${PRODUCT}.lnk" "$INSTDIR\${MAIN_EXE}"
!endif
    CreateShortcut "${MENU_FOLDER}\User's Manual.lnk" "$INSTDIR\User's Manual.pdf"
    CreateShortcut "${MENU_FOLDER}\Uninstall ${PRODUCT}.lnk" "$INSTDIR\Uninstall.exe"
SectionEnd

; Removes what the installer put there and the trace a traced run left; the library in
; Documents is the user's and stays.
Section "Uninstall"
    SetRegView 64
    SetShellVarContext all
    Delete "$INSTDIR\tvk.exe"
    Delete "$INSTDIR\User's Manual.pdf"
    Delete "$INSTDIR\TVK_ErrorLog.txt"
!ifdef WINDOW_FILES
    !insertmacro WINDOW_UNINSTALL
!endif
    Delete "$INSTDIR\Uninstall.exe"
    RMDir "$INSTDIR"

    Delete "${MENU_FOLDER}\${PRODUCT}.lnk"
    Delete "${MENU_FOLDER}\User's Manual.lnk"
    Delete "${MENU_FOLDER}\Uninstall ${PRODUCT}.lnk"
    RMDir "${MENU_FOLDER}"

    DeleteRegKey HKLM "${UNINSTALL_KEY}"
SectionEnd
