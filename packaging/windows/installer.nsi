; The installer of nicx.exe and its uninstaller. packaging/windows/package runs makensis on it and defines
;   VERSION, VERSION_NUMBERS  4.5 and 4.5.0.0
;   COPYRIGHT                 the licence's line
;   FILES                     folder with the files to install
;   ICON, PICTURE             the program's icon, and the picture of the last page
;   OUT                       the installer to make
; Options of the installer: /S silent, /DESKTOP with a desktop entry, /D=FOLDER, last and without quotes, where to.
; Both end with 0 when done, 1 when cancelled, 2 when something stood in the way.
Unicode true
; A 64-bit installer for a 64-bit program: a 32-bit Windows says itself that it needs the 64-bit Windows.
Target amd64-unicode
SetCompressor /SOLID lzma

!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh

!define PRODUCT "Orvella Corvane"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\OrvellaCorvane"

Name "${PRODUCT}"
OutFile "${OUT}"
InstallDir "$PROGRAMFILES64\${PRODUCT}"
InstallDirRegKey HKLM "${UNINSTALL_KEY}" InstallLocation
RequestExecutionLevel admin
ManifestDPIAware true
ManifestLongPathAware true
ManifestSupportedOS all
AllowSkipFiles off
BrandingText "${PRODUCT} ${VERSION}"
ShowUninstDetails show

VIProductVersion ${VERSION_NUMBERS}
VIFileVersion ${VERSION_NUMBERS}
VIAddVersionKey /LANG=0 CompanyName "Orvella"
VIAddVersionKey /LANG=0 FileDescription "${PRODUCT} installer"
VIAddVersionKey /LANG=0 FileVersion "${VERSION}"
VIAddVersionKey /LANG=0 LegalCopyright "${COPYRIGHT}"
VIAddVersionKey /LANG=0 ProductName "${PRODUCT}"
VIAddVersionKey /LANG=0 ProductVersion "${VERSION}"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${PICTURE}"
!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_RUN "$INSTDIR\nicx.exe"
!insertmacro MUI_PAGE_LICENSE "${FILES}/LICENSE.txt"
!define MUI_PAGE_CUSTOMFUNCTION_SHOW NameNextStep
!insertmacro MUI_PAGE_COMPONENTS
!define MUI_PAGE_CUSTOMFUNCTION_PRE SkipWhenInstalled
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE RequireFolder
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; What is installed, and so what may be removed; presets.npf has rules of its own.
!macro ForEachFile Do
    !insertmacro ${Do} nicx.exe
    !insertmacro ${Do} VendorNumbers.log
    !insertmacro ${Do} help.html
    !insertmacro ${Do} LICENSE.txt
    !insertmacro ${Do} NOTICES.txt
    !insertmacro ${Do} README.txt
!macroend

!macro Install Name
    File "${FILES}/${Name}"
!macroend

!macro Remove Name
    Delete "$INSTDIR\${Name}"
!macroend

!macro Find Name
    ${If} ${FileExists} "$INSTDIR\${Name}"
        StrCpy $0 "${Name}"
    ${EndIf}
!macroend

!define FOREIGN_FILE "$INSTDIR has a file $0 of something else. Choose another folder."

; Windows lets nobody write to a program that runs. Nothing is changed before this is known.
!macro DefineRequireEnded Prefix
    Function ${Prefix}RequireEnded
        ${Do}
            ${IfNot} ${FileExists} "$INSTDIR\nicx.exe"
                Return
            ${EndIf}
            ClearErrors
            FileOpen $0 "$INSTDIR\nicx.exe" a
            ${IfNot} ${Errors}
                FileClose $0
                Return
            ${EndIf}
            MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$INSTDIR\nicx.exe cannot be changed: ${PRODUCT} is \
                running, or the file is write-protected.$\r$\n$\r$\nEnd the program (File, Exit; or Exit in the menu \
                of its tray icon), then click Retry." /SD IDCANCEL IDRETRY again
            SetErrorLevel 2
            Abort "$INSTDIR\nicx.exe is running or write-protected; nothing was changed."
            again:
        ${Loop}
    FunctionEnd
!macroend
!insertmacro DefineRequireEnded ""
!insertmacro DefineRequireEnded "un."

; $0 becomes the name of a file that would be written over though it belongs to something else, or empty. In a folder of
; the program, installed or portable, all are its own.
Function FindForeignFile
    StrCpy $0 ""
    ${IfNot} ${FileExists} "$INSTDIR\nicx.exe"
    ${AndIfNot} ${FileExists} "$INSTDIR\uninstall.exe"
        !insertmacro ForEachFile Find
    ${EndIf}
FunctionEnd

Function RequireFolder
    Call FindForeignFile
    ${If} $0 != ""
        MessageBox MB_OK|MB_ICONSTOP "${FOREIGN_FILE}"
        Abort
    ${EndIf}
FunctionEnd

Section "${PRODUCT}" Program
    SectionIn RO
    Call FindForeignFile
    ${If} $0 != ""
        SetErrorLevel 2
        Abort "${FOREIGN_FILE}"
    ${EndIf}
    Call RequireEnded

    ; The way back comes first, so that an installation that fails half-way can be removed.
    ClearErrors
    SetOutPath "$INSTDIR"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    ${If} ${Errors}
        MessageBox MB_OK|MB_ICONSTOP "$INSTDIR cannot be written to. Choose another folder." /SD IDOK
        SetErrorLevel 2
        Abort "$INSTDIR cannot be written to."
    ${EndIf}
    Call WriteUninstallKey

    SetOverwrite on
    !insertmacro ForEachFile Install
    ; The user's presets are never written over.
    SetOverwrite off
    File "${FILES}/presets.npf"

    CreateShortcut "$SMPROGRAMS\${PRODUCT}.lnk" "$INSTDIR\nicx.exe"
    Delete "$DESKTOP\${PRODUCT}.lnk"
SectionEnd

; What Windows lists under "Apps", in the 64-bit part of the registry.
Function WriteUninstallKey
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayName "${PRODUCT}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\nicx.exe"
    WriteRegStr HKLM "${UNINSTALL_KEY}" Publisher "Orvella"
    WriteRegStr HKLM "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
    SectionGetSize ${Program} $0
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" EstimatedSize $0
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoModify 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoRepair 1
FunctionEnd

Section /o "Desktop entry" Desktop
    CreateShortcut "$DESKTOP\${PRODUCT}.lnk" "$INSTDIR\nicx.exe"
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${Program} "The program, its help page, its list of manufacturers, and an entry \
        in the Start menu."
    !insertmacro MUI_DESCRIPTION_TEXT ${Desktop} "An entry on the desktop of every user."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; $0 becomes the folder that /D= names, or empty.
Function GetNamedFolder
    System::Call "kernel32::GetCommandLineW() w .r0"
    StrCpy $1 0
    ${Do}
        StrCpy $2 $0 4 $1
        ${If} $2 == ""
            StrCpy $0 ""
            Return
        ${EndIf}
        IntOp $1 $1 + 1
    ${LoopUntil} $2 S== " /D="
    IntOp $1 $1 + 3
    StrCpy $0 $0 "" $1
    ${Do}
        StrCpy $2 $0 1 -1
        ${If} $2 != "\"
            ${ExitDo}
        ${EndIf}
        StrCpy $0 $0 -1
    ${Loop}
FunctionEnd

; There is one installation. A newer version goes where it is; $R9 is its folder, or empty.
Function .onInit
    SetShellVarContext all
    ; For a folder that cannot be, the default would be taken in silence.
    Call GetNamedFolder
    ${If} $0 != ""
    ${AndIf} $0 != $INSTDIR
        MessageBox MB_OK|MB_ICONSTOP "/D=$0 names no folder that can be made." /SD IDOK
        SetErrorLevel 2
        Quit
    ${EndIf}

    ReadRegStr $R9 HKLM "${UNINSTALL_KEY}" InstallLocation
    ${IfNot} ${FileExists} "$R9\uninstall.exe"
        StrCpy $R9 ""
    ${EndIf}
    ${If} $R9 != ""
    ${AndIf} $R9 != $INSTDIR
        MessageBox MB_OK|MB_ICONSTOP "${PRODUCT} is installed in $R9 already. Install it there again, or uninstall it \
            first." /SD IDOK
        SetErrorLevel 2
        Quit
    ${EndIf}

    ClearErrors
    ${GetParameters} $0
    ${GetOptions} $0 "/DESKTOP" $1
    ${IfNot} ${Errors}
    ${OrIf} ${FileExists} "$DESKTOP\${PRODUCT}.lnk"
        !insertmacro SelectSection ${Desktop}
    ${EndIf}
FunctionEnd

; Without the page of the folder the next step is the installation.
Function NameNextStep
    ${If} $R9 != ""
        GetDlgItem $0 $HWNDPARENT 1
        SendMessage $0 ${WM_SETTEXT} 0 "STR:$(^InstallBtn)"
    ${EndIf}
FunctionEnd

Function SkipWhenInstalled
    ${If} $R9 != ""
        Abort
    ${EndIf}
FunctionEnd

Function un.onInit
    SetShellVarContext all
    StrCpy $0 $INSTDIR 1 -1
    ${If} $0 == "\"
        StrCpy $INSTDIR $INSTDIR -1
    ${EndIf}
FunctionEnd

; Deletes presets.npf if it is as it was delivered, and keeps it otherwise.
Function un.RemoveUnusedPresets
    InitPluginsDir
    File "/oname=$PLUGINSDIR\presets.npf" "${FILES}/presets.npf"
    ClearErrors
    FileOpen $0 "$INSTDIR\presets.npf" r
    FileOpen $1 "$PLUGINSDIR\presets.npf" r
    ${If} ${Errors}
        FileClose $0
        FileClose $1
        Return
    ${EndIf}
    ${Do}
        ClearErrors
        FileReadByte $0 $2
        ${If} ${Errors}
            StrCpy $2 "end"
        ${EndIf}
        ClearErrors
        FileReadByte $1 $3
        ${If} ${Errors}
            StrCpy $3 "end"
        ${EndIf}
        ${If} $2 != $3
        ${OrIf} $2 == "end"
            ${ExitDo}
        ${EndIf}
    ${Loop}
    FileClose $0
    FileClose $1
    ${If} $2 == $3
        Delete "$INSTDIR\presets.npf"
    ${Else}
        DetailPrint "Your presets stay in $INSTDIR\presets.npf."
    ${EndIf}
FunctionEnd

Section Uninstall
    Call un.RequireEnded
    SetOutPath "$TEMP"
    ClearErrors
    !insertmacro ForEachFile Remove
    Delete "$SMPROGRAMS\${PRODUCT}.lnk"
    Delete "$DESKTOP\${PRODUCT}.lnk"
    ${If} ${Errors}
        MessageBox MB_OK|MB_ICONEXCLAMATION "Not every file of ${PRODUCT} could be removed from $INSTDIR. Close \
            what uses them and uninstall again." /SD IDOK
        SetErrorLevel 2
        Abort "Not every file could be removed."
    ${EndIf}
    Call un.RemoveUnusedPresets

    ; The program's one setting, the name of the connections folder. NetworkAddress and OriginalNetworkAddress in the
    ; drivers' keys are the adapters' own set-up: they stay, and with them the addresses that the user chose.
    DeleteRegKey HKLM "SOFTWARE\Orvella\Corvane_v4"
    DeleteRegKey /ifnosubkeys /ifnovalues HKLM "SOFTWARE\Orvella"
    DeleteRegKey HKLM "${UNINSTALL_KEY}"

    ; Only an empty folder goes: other files in it are not the program's.
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
SectionEnd
