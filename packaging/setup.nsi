; The installer: one file for both widths, for the current user or for everybody. ./package compiles it with
;   VERSION    "1.0.0"
;   PAYLOAD    folder with what is installed: x86\, x64\, docs\, examples\, LICENSE.txt, README.txt
;   REMOVE     the instructions that remove exactly that
;   ICON       of both programs
;   OUTPUT     the file to make
;
; Command line (docs/administration.md describes it for those who roll an add-in out):
;   /S  quiet   /CurrentUser   /AllUsers   /Repair  as it was installed   /D=FOLDER  last, without quotation marks
; Without a scope it is for everybody where this process has the rights of an administrator, which a double click does not give it,
; else for the user.
; Exit codes: 0 done, 1 cancelled, 2 failed and rolled back, 5 no rights for /AllUsers, 32 the component is in use

Unicode true
ManifestDPIAware true
; A standard user must be able to start it; for everybody it starts itself again with administrator's rights.
RequestExecutionLevel user
SetCompressor /SOLID lzma

!define NAME "brvSQLEditor"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"
!define SETTINGS_PARENT "Software\VB and VBA Program Settings"

Name "${NAME} ${VERSION}"
OutFile "${OUTPUT}"
BrandingText "${NAME} ${VERSION}"
ShowInstDetails nevershow
ShowUninstDetails nevershow

!include "MUI2.nsh"
!include "LogicLib.nsh"
!include "FileFunc.nsh"
!include "nsDialogs.nsh"
!include "x64.nsh"
!include "WinVer.nsh"

VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${NAME}"
VIAddVersionKey "FileDescription" "Installs the SQL Editor window for database add-ins"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "CompanyName" "The brvSQLEditor authors"
VIAddVersionKey "LegalCopyright" "Copyright (c) 2026 The brvSQLEditor authors"

Var Scope          ; "User" or "Machine": whose folders, list of programs and classes
Var ClassScope     ; the same, where the classes are registered
Var GivenFolder    ; that of /D=, which is not among the parameters that an installer sees
Var Repairing      ; "1": install what is there once more
Var ForUser        ; the radio buttons of the page
Var ForEverybody
Var RemoveSettings ; "1": the uninstaller forgets where the window stood
Var SettingsBox
Var Code

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING

!define MUI_WELCOMEPAGE_TITLE "${NAME} ${VERSION}"
!define MUI_WELCOMEPAGE_TEXT "This installs the SQL Editor window that database add-ins open.$\r$\n$\r$\nClose the programs that use it first, your spreadsheet among them.$\r$\n$\r$\n$_CLICK"
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_LICENSE "${PAYLOAD}\LICENSE.txt"
Page custom ScopePage ScopeChosen
!define MUI_PAGE_CUSTOMFUNCTION_PRE SkipWhenRepairing
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_TITLE "${NAME} is installed"
!define MUI_FINISHPAGE_TEXT "Add-ins find it from now on; a program that is running may have to be started again.$\r$\n$\r$\nExamples for Basic, script, C++, C#, Python and PowerShell are in the folder that was installed."
!insertmacro MUI_PAGE_FINISH

UninstPage custom un.SettingsPage un.SettingsChosen
!insertmacro MUI_UNPAGE_INSTFILES

!insertmacro MUI_LANGUAGE "English"

; ---- where, and for whom

!macro ContextOf un
Function ${un}UseScope ; $Scope: the folders and registry roots that the instructions below mean
    ${If} ${RunningX64}
        SetRegView 64
    ${EndIf}
    ${If} $Scope == "Machine"
        SetShellVarContext all
    ${Else}
        SetShellVarContext current
    ${EndIf}
    StrCpy $ClassScope $Scope
    ${If} $Scope == "User"
        ; Wine shows the classes of the machine alone to COM, and what it calls the machine is one user's own: there they go.
        WriteRegStr HKCU "Software\Classes\${NAME}.probe" "" "seen"
        ReadRegStr $0 HKCR "${NAME}.probe" ""
        DeleteRegKey HKCU "Software\Classes\${NAME}.probe"
        ${If} $0 != "seen"
            StrCpy $ClassScope "Machine"
        ${EndIf}
        ; Where the control of user accounts is off, COM looks for no classes of an administrator's own.
        UserInfo::GetAccountType
        Pop $0
        ${If} $0 == "Admin"
            ReadRegDWORD $0 HKLM "Software\Microsoft\Windows\CurrentVersion\Policies\System" "EnableLUA"
            ${If} $0 == "0"
                StrCpy $ClassScope "Machine"
            ${EndIf}
        ${EndIf}
    ${EndIf}
FunctionEnd
!macroend
!insertmacro ContextOf ""
!insertmacro ContextOf "un."

Function HasRights ; pushes 1 when this process may install for everybody
    UserInfo::GetAccountType
    Pop $0
    ${If} $0 == "Admin"
        Push 1
    ${Else}
        Push 0
    ${EndIf}
FunctionEnd

Function DefaultFolder ; $INSTDIR for $Scope: where it is already, else where such programs go
    Call UseScope
    ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $0 != ""
        StrCpy $INSTDIR $0
    ${ElseIf} $Scope == "User"
        StrCpy $INSTDIR "$LOCALAPPDATA\Programs\${NAME}"
    ${ElseIf} ${RunningX64}
        StrCpy $INSTDIR "$PROGRAMFILES64\${NAME}"
    ${Else}
        StrCpy $INSTDIR "$PROGRAMFILES\${NAME}"
    ${EndIf}
FunctionEnd

Function .onInit
    ${IfNot} ${AtLeastWin7}
        MessageBox MB_OK|MB_ICONSTOP "${NAME} needs Windows 7 or later." /SD IDOK
        SetErrorLevel 2
        Quit
    ${EndIf}
    StrCpy $GivenFolder $INSTDIR
    StrCpy $Scope "User"
    StrCpy $Repairing ""
    Call HasRights
    Pop $0
    ${If} $0 == 1
        StrCpy $Scope "Machine"
    ${EndIf}
    ${GetParameters} $R0
    ClearErrors
    ${GetOptions} $R0 "/CurrentUser" $R1
    ${IfNot} ${Errors}
        StrCpy $Scope "User"
    ${EndIf}
    ClearErrors
    ${GetOptions} $R0 "/AllUsers" $R1
    ${IfNot} ${Errors}
        StrCpy $Scope "Machine"
    ${EndIf}
    ClearErrors
    ${GetOptions} $R0 "/Repair" $R1
    ${IfNot} ${Errors}
        StrCpy $Repairing 1
        Call FindInstalled
    ${EndIf}
    ${If} $Scope == "Machine"
        Call HasRights
        Pop $0
        ${If} $0 != 1
            IfSilent 0 +3
            SetErrorLevel 5
            Quit
            Call StartElevated
        ${EndIf}
    ${EndIf}
    ${If} $INSTDIR == "" ; no /D=
        Call DefaultFolder
    ${Else}
        Call UseScope
    ${EndIf}
FunctionEnd

; What is repaired is where this file is, when "Change" started it, else what there is: the user's own first, as it is for COM.
Function FindInstalled
    StrCpy $Scope "User"
    Call UseScope
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "InstallLocation"
    ReadRegStr $1 HKLM "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $1 == ""
        Return
    ${EndIf}
    ${If} $1 == $EXEDIR
    ${OrIf} $0 == ""
        StrCpy $Scope "Machine"
    ${EndIf}
FunctionEnd

Function StartElevated
    StrCpy $0 "/AllUsers"
    ${If} $Repairing == 1
        StrCpy $0 "/AllUsers /Repair"
    ${EndIf}
    ${If} $GivenFolder != ""
        StrCpy $0 "$0 /D=$GivenFolder" ; last, and without quotation marks
    ${EndIf}
    ClearErrors
    ExecShell "runas" "$EXEPATH" "$0"
    ${If} ${Errors}
        MessageBox MB_OK|MB_ICONEXCLAMATION "Installing for everybody needs the rights of an administrator." /SD IDOK
        SetErrorLevel 5
    ${EndIf}
    Quit
FunctionEnd

Function SkipWhenRepairing
    ${If} $Repairing == 1
        Abort
    ${EndIf}
FunctionEnd

Function ScopePage
    ${If} $Repairing == 1
        Abort
    ${EndIf}
    !insertmacro MUI_HEADER_TEXT "Who is it for?" "The add-ins of these users will find the SQL Editor."
    nsDialogs::Create 1018
    Pop $0
    ${If} $0 == error
        Abort
    ${EndIf}
    ${NSD_CreateRadioButton} 10u 10u 90% 12u "Only for &me (needs no administrator)"
    Pop $ForUser
    ${NSD_CreateRadioButton} 10u 28u 90% 12u "For &everybody who uses this computer"
    Pop $ForEverybody
    ${NSD_CreateLabel} 10u 52u 90% 36u "Programs that run with administrator's rights find only what is installed for everybody."
    Pop $0
    ${If} $Scope == "Machine"
        ${NSD_Check} $ForEverybody
    ${Else}
        ${NSD_Check} $ForUser
    ${EndIf}
    nsDialogs::Show
FunctionEnd

Function ScopeChosen
    ${NSD_GetState} $ForEverybody $0
    StrCpy $1 $Scope
    ${If} $0 == ${BST_CHECKED}
        Call HasRights
        Pop $0
        ${If} $0 != 1
            Call StartElevated
        ${EndIf}
        StrCpy $Scope "Machine"
    ${Else}
        StrCpy $Scope "User"
    ${EndIf}
    ${If} $1 != $Scope
        Call DefaultFolder
    ${EndIf}
FunctionEnd

; ---- registration: each width by the regsvr32 of its own. This installer is a 32-bit program, to which $SYSDIR is the folder of the
; 32-bit one, and Sysnative that of the 64-bit one.

!macro Register un width folder
Function ${un}Regsvr32_${width} ; takes /u or nothing from the stack, leaves the exit code in $Code
    Pop $0
    ; /n /i:user: by DllInstall, for the user alone
    StrCpy $1 "/s"
    ${If} $ClassScope == "User"
        StrCpy $1 "/s /n /i:user"
    ${EndIf}
    StrCpy $Code -1
    ExecWait '"${folder}\regsvr32.exe" $0 $1 "$INSTDIR\${width}\${NAME}.dll"' $Code
FunctionEnd
!macroend
!insertmacro Register "" x86 "$SYSDIR"
!insertmacro Register "" x64 "$WINDIR\Sysnative"
!insertmacro Register "un." x86 "$SYSDIR"
!insertmacro Register "un." x64 "$WINDIR\Sysnative"

!macro RemoveFilesFor un
Function ${un}RemoveFiles ; only what was installed: the folder may be one of the user's own
    !include "${REMOVE}"
    RMDir "$INSTDIR"
FunctionEnd

; A module that a program has loaded cannot be opened for writing. Pushes 1 when neither is in use.
Function ${un}NotInUse
    StrCpy $1 1
    ClearErrors
    ${If} ${FileExists} "$INSTDIR\x86\${NAME}.dll"
        FileOpen $0 "$INSTDIR\x86\${NAME}.dll" a
        ${If} ${Errors}
            StrCpy $1 0
        ${Else}
            FileClose $0
        ${EndIf}
    ${EndIf}
    ClearErrors
    ${If} ${FileExists} "$INSTDIR\x64\${NAME}.dll"
        FileOpen $0 "$INSTDIR\x64\${NAME}.dll" a
        ${If} ${Errors}
            StrCpy $1 0
        ${Else}
            FileClose $0
        ${EndIf}
    ${EndIf}
    ClearErrors
    Push $1
FunctionEnd

; Goes on when nothing is in use, else asks for as long as the user wants to try again.
Function ${un}WaitUntilUnused
  again:
    Call ${un}NotInUse
    Pop $0
    ${If} $0 == 1
        Return
    ${EndIf}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "A program is using the SQL Editor. Close it (your spreadsheet, perhaps) and try again." /SD IDCANCEL IDRETRY again
    SetErrorLevel 32
    Quit
FunctionEnd
!macroend
!insertmacro RemoveFilesFor ""
!insertmacro RemoveFilesFor "un."

Function RollBack ; a component that is registered by half would be found and not be made
    Push "/u"
    Call Regsvr32_x86
    ${If} ${RunningX64}
        Push "/u"
        Call Regsvr32_x64
    ${EndIf}
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
    Call RemoveFiles
    MessageBox MB_OK|MB_ICONSTOP "${NAME} could not be registered, so it was removed again." /SD IDOK
    SetErrorLevel 2
    Quit
FunctionEnd

Section "${NAME}"
    Call UseScope
    Call WaitUntilUnused
    SetOverwrite on
    ClearErrors
    SetOutPath "$INSTDIR"
    File "${PAYLOAD}\LICENSE.txt"
    File "${PAYLOAD}\README.txt"
    SetOutPath "$INSTDIR\x86"
    File "${PAYLOAD}\x86\*.*"
    ${If} ${RunningX64}
        SetOutPath "$INSTDIR\x64"
        File "${PAYLOAD}\x64\*.*"
    ${EndIf}
    SetOutPath "$INSTDIR\docs"
    File /r "${PAYLOAD}\docs\*.*"
!if /FileExists "${PAYLOAD}\examples\*.*"
    SetOutPath "$INSTDIR\examples"
    File /r "${PAYLOAD}\examples\*.*"
!endif
    SetOutPath "$INSTDIR"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    ; What "Change" of the list of installed programs starts.
    ${If} "$EXEPATH" != "$INSTDIR\setup.exe"
        CopyFiles /SILENT "$EXEPATH" "$INSTDIR\setup.exe"
    ${EndIf}
    ${If} ${Errors}
        Call RollBack
    ${EndIf}
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "The brvSQLEditor authors"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\x86\${NAME}.dll"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "ModifyPath" '"$INSTDIR\setup.exe" /Repair'
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" $0
    Push ""
    Call Regsvr32_x86
    ${If} $Code != 0
        Call RollBack
    ${EndIf}
    ${If} ${RunningX64}
        Push ""
        Call Regsvr32_x64
        ; On a processor of the ARM kind the 64-bit regsvr32 is of that kind, and cannot load it: 32-bit hosts have it nevertheless.
        ${If} $Code != 0
        ${AndIfNot} ${IsNativeARM64}
            Call RollBack
        ${EndIf}
    ${EndIf}
SectionEnd

; ---- removal

Function un.onInit
    StrCpy $RemoveSettings 0
    ${GetParameters} $R0
    ClearErrors
    ${GetOptions} $R0 "/RemoveSettings" $R1
    ${IfNot} ${Errors}
        StrCpy $RemoveSettings 1
    ${EndIf}
    ; For whom it was installed is where its entry is, with this folder in it.
    StrCpy $Scope "User"
    Call un.UseScope
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $0 != $INSTDIR
        ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "InstallLocation"
        ${If} $0 == $INSTDIR
            StrCpy $Scope "Machine"
        ${EndIf}
    ${EndIf}
    ${If} $Scope == "Machine"
        UserInfo::GetAccountType
        Pop $0
        ${If} $0 != "Admin"
            IfSilent quiet
            ClearErrors
            StrCpy $0 ""
            ${If} $RemoveSettings == 1
                StrCpy $0 "/RemoveSettings" ; of the account that it goes on with
            ${EndIf}
            ExecShell "runas" "$INSTDIR\uninstall.exe" "$0"
            ${If} ${Errors}
                MessageBox MB_OK|MB_ICONEXCLAMATION "Removing what was installed for everybody needs the rights of an administrator."
                SetErrorLevel 5
            ${EndIf}
            Quit
          quiet:
            SetErrorLevel 5
            Quit
        ${EndIf}
    ${EndIf}
    Call un.UseScope
FunctionEnd

Function un.SettingsPage
    !insertmacro MUI_HEADER_TEXT "Remove ${NAME}" "The SQL Editor will be removed from this computer."
    nsDialogs::Create 1018
    Pop $0
    ${If} $0 == error
        Abort
    ${EndIf}
    ${NSD_CreateLabel} 10u 10u 90% 24u "It is in the folder $INSTDIR."
    Pop $0
    ${NSD_CreateCheckBox} 10u 40u 90% 12u "&Forget place and size of its window as well"
    Pop $SettingsBox
    nsDialogs::Show
FunctionEnd

Function un.SettingsChosen
    ${NSD_GetState} $SettingsBox $0
    ${If} $0 == ${BST_CHECKED}
        StrCpy $RemoveSettings 1
    ${EndIf}
FunctionEnd

Section "Uninstall"
    Call un.WaitUntilUnused
    ${If} ${FileExists} "$INSTDIR\x64\${NAME}.dll"
        Push "/u"
        Call un.Regsvr32_x64
    ${EndIf}
    ${If} ${FileExists} "$INSTDIR\x86\${NAME}.dll"
        Push "/u"
        Call un.Regsvr32_x86
    ${EndIf}
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
    SetOutPath "$TEMP" ; else the folder itself would be in use
    Call un.RemoveFiles
    ${If} $Scope == "User"
        ; These may have been made for us.
        RMDir "$LOCALAPPDATA\Programs"
        DeleteRegKey /ifempty HKCU "Software\Microsoft\Windows\CurrentVersion\Uninstall"
    ${EndIf}
    ${If} $RemoveSettings == 1
        DeleteRegKey HKCU "${SETTINGS_PARENT}\${NAME}"
        DeleteRegKey /ifempty HKCU "${SETTINGS_PARENT}"
    ${EndIf}
SectionEnd
