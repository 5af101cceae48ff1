; The installer: one file for both widths, for the current user or for everybody. packaging/compile compiles it with
;   VERSION    "1.0.0"
;   PAYLOAD    folder with what is installed: x86\, x64\, docs\, examples\, LICENSE.txt, README.txt
;   INSTALLED  the list of it, which is installed as installed.txt: one path below the folder a line
;   REMOVE     the instructions that remove exactly that
;   ICON       of both programs
;   OUTPUT     the file to make
;
; Command line (docs/administration.md describes it for those who roll an add-in out):
;   /S  quiet   /CurrentUser   /AllUsers   /Repair  as it was installed   /LOG=FILE  where to write what is done
;   /RemoveUserCopy  with /AllUsers: removes the copy that this account has for itself   /D=FOLDER  last, without quotation marks
; Without a scope it is for everybody where this process has the rights of an administrator, which a double click does not give it,
; else for the user.
; Exit codes: 0 done, 1 cancelled, 2 failed and what was there before is in place again, 5 no rights for /AllUsers, 32 the component is in use
;
; An upgrade sets the files of the version that is there aside, in a folder beside them, and only deletes them when the new ones are
; registered. An installation that was cut off by a power failure is put back by the next one.

Unicode true
ManifestDPIAware true
; A standard user must be able to start it; for everybody it starts itself again with administrator's rights.
RequestExecutionLevel user
SetCompressor /SOLID lzma

!define NAME "brvSQLEditor"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"
!define CLASS_KEY "Software\Classes\CLSID\{23E4F85E-641E-4BBE-9AB0-B986E65922EA}\InprocServer32"
!define ASIDE "${NAME}.previous" ; beside the files: the version that is being replaced
!define DONE "${NAME}.replaced"  ; the same when the new one is registered
!define SETTINGS_PARENT "Software\VB and VBA Program Settings"

Name "${NAME} ${VERSION}"
OutFile "${OUTPUT}"
BrandingText "${NAME} ${VERSION}"
ShowInstDetails nevershow
ShowUninstDetails nevershow

!include "MUI2.nsh"
!include "LogicLib.nsh"
!include "FileFunc.nsh"
!include "TextFunc.nsh"
!include "WordFunc.nsh"
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
Var SharedClasses  ; "1": COM looks at the classes of the machine alone, so both scopes register there
Var NoClassesOfMine ; "1": for this account Windows does so, an administrator without the control of user accounts
Var Parameters     ; of the command line, without /D=
Var GivenScope     ; "1": the command line has told for whom
Var Elevated       ; "1": an installer without an administrator's rights has started this one
Var GivenFolder    ; that of /D=, which is not among the parameters that an installer sees
Var Repairing      ; "1": install what is there once more
Var ForUser        ; the radio buttons of the page
Var ForEverybody
Var RemoveSettings ; "1": the uninstaller forgets where the window stood
Var SettingsBox
Var RemoveUserCopy ; "1": this account's own copy goes when everybody has one
Var OtherFolder    ; the copy of the other scope, "" when there is none
Var OtherVersion
Var OldFolder      ; the version that is replaced: its folder, this one when none is installed
Var OldVersion     ; "" when none is installed
Var OldServer32    ; the files that are registered before, which need not be ours
Var OldServer64
Var Stage          ; what has to be taken back: 1 files are set aside, 2 and new ones are written, 3 and registered, 4 and entered in the list
Var List           ; the arguments of ForEachListed
Var Folder         ; that, and of NotInUse
Var Action
Var Failed         ; the first file that could not be moved
Var LogFile
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

!macro LogLine text
    Push `${text}`
!ifdef __UNINSTALL__
    Call un.Log
!else
    Call Log
!endif
!macroend
!define Log "!insertmacro LogLine"

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
    StrCpy $SharedClasses ""
    StrCpy $NoClassesOfMine ""
    ; Wine shows the classes of the machine alone to COM, and what it calls the machine is one user's own: there they go.
    WriteRegStr HKCU "Software\Classes\${NAME}.probe" "" "seen"
    ReadRegStr $0 HKCR "${NAME}.probe" ""
    DeleteRegKey HKCU "Software\Classes\${NAME}.probe"
    ${If} $0 != "seen"
        StrCpy $SharedClasses 1
    ${EndIf}
    ; Where the control of user accounts is off, COM looks for no classes of an administrator's own.
    UserInfo::GetAccountType
    Pop $0
    ${If} $0 == "Admin"
        ReadRegDWORD $0 HKLM "Software\Microsoft\Windows\CurrentVersion\Policies\System" "EnableLUA"
        ${If} $0 == "0"
            StrCpy $SharedClasses 1
            StrCpy $NoClassesOfMine 1
        ${EndIf}
    ${EndIf}
    StrCpy $ClassScope $Scope
    ${If} $SharedClasses == 1
        StrCpy $ClassScope "Machine"
    ${EndIf}
    ; The copy of the other scope.
    ${If} $Scope == "Machine"
        ReadRegStr $OtherFolder HKCU "${UNINSTALL_KEY}" "InstallLocation"
        ReadRegStr $OtherVersion HKCU "${UNINSTALL_KEY}" "DisplayVersion"
    ${Else}
        ReadRegStr $OtherFolder HKLM "${UNINSTALL_KEY}" "InstallLocation"
        ReadRegStr $OtherVersion HKLM "${UNINSTALL_KEY}" "DisplayVersion"
    ${EndIf}
    ClearErrors
FunctionEnd

; ---- the log, which is added to: beside Windows' own logs of installations for everybody, else in the user's folder for temporary files.
; In UTF-16, since folders may have any name.

Function ${un}OpenLog ; says what was asked for
    ${GetParameters} $Parameters
    ClearErrors
    ${GetOptions} $Parameters "/LOG=" $LogFile
    ${If} ${Errors}
    ${OrIf} $LogFile == ""
        StrCpy $LogFile "$TEMP\${NAME}-setup.log"
        UserInfo::GetAccountType
        Pop $0
        ${If} $Scope == "Machine"
        ${AndIf} $0 == "Admin"
            CreateDirectory "$WINDIR\Logs"
            StrCpy $LogFile "$WINDIR\Logs\${NAME}-setup.log"
        ${EndIf}
    ${EndIf}
    UserInfo::GetName
    Pop $0
    ${Log} "---- ${NAME} ${VERSION}: $EXEPATH $Parameters"
    ${Log} "Account $0, scope $Scope, folder $INSTDIR"
    ${If} $OtherFolder != ""
        ${Log} "The other scope has version $OtherVersion in $OtherFolder"
    ${EndIf}
FunctionEnd

Function ${un}Log ; adds the text on the stack as a line; that it cannot stops nothing
    Exch $0
    Push $1
    Push $2
    Push $3
    Push $4
    Push $5
    Push $6
    Push $7
    Push $8
    ${GetTime} "" "L" $1 $2 $3 $4 $5 $6 $7
    ClearErrors
    FileOpen $8 $LogFile a
    ${IfNot} ${Errors}
        FileSeek $8 0 END
        FileWriteUTF16LE /BOM $8 "$3-$2-$1 $5:$6:$7 $0$\r$\n"
        FileClose $8
    ${EndIf}
    ClearErrors
    Pop $8
    Pop $7
    Pop $6
    Pop $5
    Pop $4
    Pop $3
    Pop $2
    Pop $1
    Pop $0
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
    StrCpy $RemoveUserCopy ""
    StrCpy $GivenScope ""
    StrCpy $Elevated ""
    StrCpy $Stage 0
    Call HasRights
    Pop $0
    ${If} $0 == 1
        StrCpy $Scope "Machine"
    ${EndIf}
    ${GetParameters} $R0
    ClearErrors
    ${GetOptions} $R0 "/RemoveUserCopy" $R1
    ${IfNot} ${Errors}
        StrCpy $RemoveUserCopy 1
    ${EndIf}
    ClearErrors
    ${GetOptions} $R0 "/Elevated" $R1
    ${IfNot} ${Errors}
        StrCpy $Elevated 1
    ${EndIf}
    ClearErrors
    ${GetOptions} $R0 "/CurrentUser" $R1
    ${IfNot} ${Errors}
        StrCpy $GivenScope 1
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
            ${If} ${Silent}
                Call UseScope
                Call OpenLog
                ${Log} "Failed: installing for everybody needs the rights of an administrator (exit code 5)"
                SetErrorLevel 5
                Quit
            ${EndIf}
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

; Starts this installer with an administrator's rights and all that it was given; ends with its exit code.
Function StartElevated
    ${If} $Elevated == 1 ; where the control of user accounts is off, nobody gets more rights by asking
        MessageBox MB_OK|MB_ICONEXCLAMATION "Installing for everybody needs the rights of an administrator." /SD IDOK
        SetErrorLevel 5
        Quit
    ${EndIf}
    ${GetParameters} $0
    StrCpy $0 "$0 /AllUsers /Elevated"
    ${If} $GivenFolder != ""
        StrCpy $0 "$0 /D=$GivenFolder" ; last, and without quotation marks
    ${EndIf}
    HideWindow
    ; SHELLEXECUTEINFOW with SEE_MASK_NOCLOSEPROCESS: this installer is a 32-bit program.
    System::Call '*(i 60, i 0x40, p $HWNDPARENT, w "runas", w "$EXEPATH", w r0, w "", i ${SW_SHOWNORMAL}, p, p, p, p, i, p, p) p .r1'
    System::Call 'shell32::ShellExecuteExW(p r1) i .r2'
    ${If} $2 == 0
        MessageBox MB_OK|MB_ICONEXCLAMATION "Installing for everybody needs the rights of an administrator." /SD IDOK
        SetErrorLevel 5
        Quit
    ${EndIf}
    System::Call '*$1(i, i, p, p, p, p, p, i, p, p, p, p, i, p, p .r3)'
    System::Free $1
    StrCpy $2 0
    ${If} $3 P<> 0
        System::Call 'kernel32::WaitForSingleObject(p r3, i -1)'
        System::Call 'kernel32::GetExitCodeProcess(p r3, *i .r2)'
        System::Call 'kernel32::CloseHandle(p r3)'
    ${EndIf}
    SetErrorLevel $2
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
    ; Where nobody has told, what is there already is what is most likely meant.
    ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "InstallLocation"
    ReadRegStr $1 HKCU "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $Scope == "Machine"
        ${NSD_Check} $ForEverybody
    ${ElseIf} $GivenScope != 1
    ${AndIf} $0 != ""
    ${AndIf} $1 == ""
        ${NSD_Check} $ForEverybody
    ${Else}
        ${NSD_Check} $ForUser
    ${EndIf}
    ; The rights may be those of another account, and "me" would be that one. Without classes of one's own everybody would find the files of
    ; this account.
    ${If} $Elevated == 1
    ${OrIf} $NoClassesOfMine == 1
        EnableWindow $ForUser 0
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
    ${AndIf} $GivenFolder == ""
        Call DefaultFolder
    ${Else}
        Call UseScope
    ${EndIf}
    ${If} $OtherFolder == ""
        Return
    ${EndIf}
    ; For COM a copy of the user's stands before that of everybody.
    ${If} $Scope == "User"
        MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "Version $OtherVersion is installed for everybody already, in $OtherFolder.$\r$\n$\r$\nYour ordinary programs would use a copy for you alone instead; programs with administrator's rights would not, and the two are updated separately.$\r$\n$\r$\nInstall a copy for you alone all the same?" IDYES yes
        Abort
      yes:
    ${ElseIf} $RemoveUserCopy != 1
        MessageBox MB_YESNOCANCEL|MB_ICONQUESTION "You have a copy for you alone, version $OtherVersion in $OtherFolder. Your ordinary programs would go on using that one.$\r$\n$\r$\nRemove it when the installation for everybody is done?" IDYES remove IDNO leave
        Abort
      remove:
        StrCpy $RemoveUserCopy 1
      leave:
    ${EndIf}
FunctionEnd

; ---- registration: each width by the regsvr32 of its own. This installer is a 32-bit program, to which $SYSDIR is the folder of the
; 32-bit one, and Sysnative that of the 64-bit one.

!macro Register un width folder
Function ${un}Regsvr32_${width} ; takes /u or nothing from the stack, then the file; leaves the exit code in $Code
    Pop $0
    Pop $2
    ; /n /i:user: by DllInstall, for the user alone
    StrCpy $1 "/s"
    ${If} $ClassScope == "User"
        StrCpy $1 "/s /n /i:user"
    ${EndIf}
    StrCpy $Code -1
    ExecWait '"${folder}\regsvr32.exe" $0 $1 "$2"' $Code
    ${Log} 'regsvr32 $0 $1 "$2": $Code'
FunctionEnd
!macroend
!insertmacro Register "" x86 "$SYSDIR"
!insertmacro Register "" x64 "$WINDIR\Sysnative"
!insertmacro Register "un." x86 "$SYSDIR"
!insertmacro Register "un." x64 "$WINDIR\Sysnative"

!macro UseFor un
; A module that a program has loaded cannot be opened for writing. Pushes 1 when neither of $Folder is in use.
Function ${un}NotInUse
    StrCpy $1 1
    !insertmacro TryModule x86
    !insertmacro TryModule x64
    Push $1
FunctionEnd

; Goes on when nothing of $Folder is in use, else asks for as long as the user wants to try again.
Function ${un}WaitUntilUnused
  again:
    Call ${un}NotInUse
    Pop $0
    ${If} $0 == 1
        Return
    ${EndIf}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "A program is using the SQL Editor. Close it (your spreadsheet, perhaps) and try again." /SD IDCANCEL IDRETRY again
    ${Log} "Failed: a program is using the component in $Folder (exit code 32)"
    SetErrorLevel 32
    Quit
FunctionEnd
!macroend

!macro TryModule width
    ClearErrors
    ${If} ${FileExists} "$Folder\${width}\${NAME}.dll"
        FileOpen $0 "$Folder\${width}\${NAME}.dll" a
        ${If} ${Errors}
            StrCpy $1 0
        ${Else}
            FileClose $0
        ${EndIf}
    ${EndIf}
    ClearErrors
!macroend
!insertmacro UseFor ""
!insertmacro UseFor "un."

; ---- the version that is replaced

; Does $Action with each file of the list $List that is in $Folder; $Failed is the first one with which it could not be done.
;   aside     moves it to ${ASIDE}
;   back      moves it back, over what is there
;   delete    deletes it
;   folders   removes the folders that it was in, where they are empty
Function ForEachListed
    ClearErrors
    FileOpen $R0 $List r
    ${If} ${Errors}
        ClearErrors
        Return
    ${EndIf}
    ${Do}
        ClearErrors
        FileRead $R0 $R1
        ${If} ${Errors}
            ${ExitDo}
        ${EndIf}
        ${TrimNewLines} $R1 $R1
        ; The list of an older version is a file that may have been changed: a path that leads out of the folder is passed over.
        StrCpy $R2 $R1 1
        ClearErrors
        ${WordFind} "$R1" ".." "E+1{" $R3
        ${IfNot} ${Errors}
            StrCpy $R2 "\"
        ${EndIf}
        ClearErrors
        ${WordFind} "$R1" ":" "E+1{" $R3
        ${IfNot} ${Errors}
            StrCpy $R2 "\"
        ${EndIf}
        ClearErrors
        ${If} $R2 == "\"
        ${OrIf} $R2 == ""
        ${OrIf} "$Folder\$R1" == $EXEPATH ; "Change" of the list of programs has started it from there
            ${Continue}
        ${EndIf}
        ${If} $Action == "aside"
            Call SetAside
        ${ElseIf} $Action == "back"
            Call PutBack
        ${ElseIf} $Action == "delete"
            Delete "$Folder\$R1"
        ${ElseIf} $Action == "folders"
            ${GetParent} "$Folder\$R1" $R2
            ${DoUntil} $R2 == $Folder
                RMDir $R2
                ${GetParent} $R2 $R2
            ${Loop}
        ${EndIf}
    ${Loop}
    FileClose $R0
    ClearErrors
FunctionEnd

Function SetAside
    ${If} $Failed != ""
        Return
    ${EndIf}
    ${If} ${FileExists} "$Folder\$R1\*.*" ; a folder, which is not ours
        StrCpy $Failed $R1
    ${ElseIf} ${FileExists} "$Folder\$R1"
        ${GetParent} "$Folder\${ASIDE}\$R1" $R2
        CreateDirectory $R2
        ClearErrors
        Rename "$Folder\$R1" "$Folder\${ASIDE}\$R1"
        ${If} ${Errors}
            StrCpy $Failed $R1
        ${EndIf}
    ${EndIf}
FunctionEnd

Function PutBack
    ${IfNot} ${FileExists} "$Folder\${ASIDE}\$R1"
        Return
    ${EndIf}
    Delete "$Folder\$R1"
    ${GetParent} "$Folder\$R1" $R2
    CreateDirectory $R2
    ClearErrors
    Rename "$Folder\${ASIDE}\$R1" "$Folder\$R1"
    ${If} ${Errors}
    ${AndIf} $Failed == ""
        StrCpy $Failed $R1
    ${EndIf}
FunctionEnd

!macro ForListed action folder list
    StrCpy $Action ${action}
    StrCpy $Folder ${folder}
    StrCpy $List "$PLUGINSDIR\${list}"
    Call ForEachListed
!macroend
!define ForListed "!insertmacro ForListed"

; An earlier installation into $Folder was cut off: what it had set aside goes back. What it no longer needed goes.
Function PutBackCutOff
    RMDir /r "$Folder\${DONE}"
    ${If} ${FileExists} "$Folder\${ASIDE}\*.*"
        ${Log} "An installation was cut off: its files go back to $Folder"
        CopyFiles /SILENT "$Folder\${ASIDE}\installed.txt" "$PLUGINSDIR\cut-off.txt"
        StrCpy $Failed ""
        ${ForListed} "back" $Folder "cut-off.txt"
        ${ForListed} "back" $Folder "new.txt"
        ${If} $Failed == ""
            RMDir /r "$Folder\${ASIDE}"
        ${EndIf}
        Delete "$PLUGINSDIR\cut-off.txt"
    ${EndIf}
    ClearErrors
FunctionEnd

Function FindOldVersion
    ReadRegStr $OldFolder SHCTX "${UNINSTALL_KEY}" "InstallLocation"
    ReadRegStr $OldVersion SHCTX "${UNINSTALL_KEY}" "DisplayVersion"
    ${If} $OldFolder == ""
        StrCpy $OldFolder $INSTDIR
    ${Else}
        ${Log} "It replaces version $OldVersion in $OldFolder"
    ${EndIf}
    ; HKCR shows that of the scope which is used; each width has its own.
    SetRegView 32
    ${If} $ClassScope == "User"
        ReadRegStr $OldServer32 HKCU "${CLASS_KEY}" ""
    ${Else}
        ReadRegStr $OldServer32 HKLM "${CLASS_KEY}" ""
    ${EndIf}
    StrCpy $OldServer64 ""
    ${If} ${RunningX64}
        SetRegView 64
        ${If} $ClassScope == "User"
            ReadRegStr $OldServer64 HKCU "${CLASS_KEY}" ""
        ${Else}
            ReadRegStr $OldServer64 HKLM "${CLASS_KEY}" ""
        ${EndIf}
    ${EndIf}
    ClearErrors
FunctionEnd

Function RegisterBoth ; both; leaves the exit code of the one that failed in $Code
    Push "$INSTDIR\x86\${NAME}.dll"
    Push ""
    Call Regsvr32_x86
    ${If} $Code != 0
        Return
    ${EndIf}
    ${If} ${RunningX64}
        Push "$INSTDIR\x64\${NAME}.dll"
        Push ""
        Call Regsvr32_x64
        ; On a processor of the ARM kind the 64-bit regsvr32 is of that kind, and cannot load it: 32-bit hosts have it nevertheless.
        ${If} ${IsNativeARM64}
            StrCpy $Code 0
        ${EndIf}
    ${EndIf}
FunctionEnd

Function WriteEntry ; of the list of programs: takes the version and the folder from the stack
    Pop $2
    Pop $1
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "$2"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "The brvSQLEditor authors"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$1\x86\${NAME}.dll"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$1"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$1\uninstall.exe"'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$1\uninstall.exe" /S'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "ModifyPath" '"$1\setup.exe" /Repair'
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
FunctionEnd

; Takes back what $Stage says was done: the version that was there works again, or nothing is left.
Function TakeBack
    ${If} $Stage == 0
        Return
    ${EndIf}
    ${If} $Stage >= 3
        Push "$INSTDIR\x86\${NAME}.dll"
        Push "/u"
        Call Regsvr32_x86
        ${If} ${RunningX64}
            Push "$INSTDIR\x64\${NAME}.dll"
            Push "/u"
            Call Regsvr32_x64
        ${EndIf}
    ${EndIf}
    SetOutPath "$TEMP" ; else the folder itself would be in use
    ${If} $Stage >= 2
        ${ForListed} "delete" $INSTDIR "new.txt"
    ${EndIf}
    StrCpy $Failed ""
    ${ForListed} "back" $INSTDIR "new.txt"
    ${ForListed} "back" $OldFolder "old.txt"
    ${If} $Failed == ""
        RMDir /r "$INSTDIR\${ASIDE}"
        RMDir /r "$OldFolder\${ASIDE}"
    ${Else}
        ${Log} "$Failed could not be put back; it is in the folder ${ASIDE}"
    ${EndIf}
    ${ForListed} "folders" $INSTDIR "new.txt"
    RMDir $INSTDIR
    ${If} $Stage >= 3
        ; That may be a copy which no installer has registered.
        ${If} $OldServer32 != ""
        ${AndIf} ${FileExists} $OldServer32
            Push $OldServer32
            Push ""
            Call Regsvr32_x86
        ${EndIf}
        ${If} $OldServer64 != ""
        ${AndIf} ${FileExists} $OldServer64
            Push $OldServer64
            Push ""
            Call Regsvr32_x64
        ${EndIf}
    ${EndIf}
    ${If} $Stage >= 4
        ${If} $OldVersion != ""
            Push $OldFolder
            Push $OldVersion
            Call WriteEntry
        ${Else}
            DeleteRegKey SHCTX "${UNINSTALL_KEY}"
        ${EndIf}
    ${EndIf}
    StrCpy $Stage 0
    ${Log} "What was there before is in place again"
FunctionEnd

Function RollBack
    ${Log} "Failed (exit code 2)"
    Call TakeBack
    ${If} $OldVersion != ""
        MessageBox MB_OK|MB_ICONSTOP "${NAME} ${VERSION} could not be installed. Version $OldVersion, which was there before, is in place again.$\r$\n$\r$\nWhat was done is in $LogFile." /SD IDOK
    ${Else}
        MessageBox MB_OK|MB_ICONSTOP "${NAME} could not be installed, and what had been done was taken back.$\r$\n$\r$\nWhat was done is in $LogFile." /SD IDOK
    ${EndIf}
    SetErrorLevel 2
    Quit
FunctionEnd

; The engine itself has ended the installation: the disk is full, or the installer is damaged.
Function .onInstFailed
    ${Log} "The installation was ended (exit code 2)"
    Call TakeBack
FunctionEnd

; What the new version has made superfluous. That it fails changes nothing.
Function RemoveOld
    StrCpy $Stage 0
    Rename "$INSTDIR\${ASIDE}" "$INSTDIR\${DONE}" ; from here on nothing is put back
    Rename "$OldFolder\${ASIDE}" "$OldFolder\${DONE}"
    RMDir /r "$INSTDIR\${DONE}"
    RMDir /r "$OldFolder\${DONE}"
    ${ForListed} "folders" $OldFolder "old.txt"
    ${If} $OldFolder != $INSTDIR
        RMDir $OldFolder
    ${EndIf}
    ${If} $RemoveUserCopy == 1
    ${AndIf} $Scope == "Machine"
    ${AndIf} $OtherFolder != ""
    ${AndIf} ${FileExists} "$OtherFolder\uninstall.exe"
        ExecWait '"$OtherFolder\uninstall.exe" /S _?=$OtherFolder' $0
        ${Log} "The copy of this account in $OtherFolder was removed: $0"
        ${If} $0 == 0
            Delete "$OtherFolder\uninstall.exe"
            RMDir $OtherFolder
        ${EndIf}
    ${EndIf}
    ClearErrors
FunctionEnd

Section "${NAME}"
    Call UseScope
    Call OpenLog
    Call FindOldVersion
    StrCpy $Folder $INSTDIR
    Call WaitUntilUnused
    StrCpy $Folder $OldFolder
    Call WaitUntilUnused
    InitPluginsDir
    SetOverwrite on
    File "/oname=$PLUGINSDIR\new.txt" "${INSTALLED}"
    StrCpy $Folder $INSTDIR
    Call PutBackCutOff
    StrCpy $Folder $OldFolder
    Call PutBackCutOff
    ${If} ${FileExists} "$OldFolder\installed.txt"
        CopyFiles /SILENT "$OldFolder\installed.txt" "$PLUGINSDIR\old.txt"
    ${Else}
        CopyFiles /SILENT "$PLUGINSDIR\new.txt" "$PLUGINSDIR\old.txt"
    ${EndIf}

    StrCpy $Stage 1
    StrCpy $Failed ""
    ${ForListed} "aside" $OldFolder "old.txt"
    ${ForListed} "aside" $INSTDIR "new.txt"
    ${If} $Failed != ""
        ${Log} "$Failed could not be set aside"
        Call RollBack
    ${EndIf}

    StrCpy $Stage 2
    SetOverwrite try ; else the engine would ask
    ClearErrors
    SetOutPath "$INSTDIR"
    File "${PAYLOAD}\LICENSE.txt"
    File "${PAYLOAD}\README.txt"
    File "/oname=$INSTDIR\installed.txt" "${INSTALLED}"
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
        ${Log} "A file could not be written"
        Call RollBack
    ${EndIf}

    StrCpy $Stage 3
    Call RegisterBoth
    ${If} $Code != 0
        Call RollBack
    ${EndIf}

    StrCpy $Stage 4
    ClearErrors
    Push $INSTDIR
    Push ${VERSION}
    Call WriteEntry
    ${If} ${Errors}
        ${Log} "The entry in the list of programs could not be written"
        Call RollBack
    ${EndIf}
    Call RemoveOld
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" $0
    ${Log} "Installed (exit code 0)"
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
    StrCpy $Elevated ""
    ClearErrors
    ${GetOptions} $R0 "/Elevated" $R1
    ${IfNot} ${Errors}
        StrCpy $Elevated 1
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
            ${IfNot} ${Silent}
            ${AndIf} $Elevated != 1 ; else it would ask for ever where the control of user accounts is off
                ClearErrors
                ExecShell "runas" "$INSTDIR\uninstall.exe" "$R0 /Elevated" ; settings are those of the account that it goes on with
                ${IfNot} ${Errors}
                    Quit
                ${EndIf}
            ${EndIf}
            Call un.UseScope
            Call un.OpenLog
            ${Log} "Failed: removing what was installed for everybody needs the rights of an administrator (exit code 5)"
            MessageBox MB_OK|MB_ICONEXCLAMATION "Removing what was installed for everybody needs the rights of an administrator." /SD IDOK
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
    ${If} $RemoveSettings == 1
        ${NSD_Check} $SettingsBox
    ${EndIf}
    nsDialogs::Show
FunctionEnd

Function un.SettingsChosen
    ${NSD_GetState} $SettingsBox $0
    StrCpy $RemoveSettings $0 ; 1: checked
FunctionEnd

Function un.RemoveFiles ; only what was installed: the folder may be one of the user's own
    !include "${REMOVE}"
    RMDir "$INSTDIR"
FunctionEnd

Section "Uninstall"
    Call un.OpenLog
    StrCpy $Folder $INSTDIR
    Call un.WaitUntilUnused
    ${If} ${FileExists} "$INSTDIR\x64\${NAME}.dll"
        Push "$INSTDIR\x64\${NAME}.dll"
        Push "/u"
        Call un.Regsvr32_x64
    ${EndIf}
    ${If} ${FileExists} "$INSTDIR\x86\${NAME}.dll"
        Push "$INSTDIR\x86\${NAME}.dll"
        Push "/u"
        Call un.Regsvr32_x86
    ${EndIf}
    ; The other copy was registered in the same place.
    ${If} $SharedClasses == 1
    ${AndIf} ${FileExists} "$OtherFolder\x86\${NAME}.dll"
        Push "$OtherFolder\x86\${NAME}.dll"
        Push ""
        Call un.Regsvr32_x86
        ${If} ${RunningX64}
            Push "$OtherFolder\x64\${NAME}.dll"
            Push ""
            Call un.Regsvr32_x64
        ${EndIf}
    ${EndIf}
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
    SetOutPath "$TEMP" ; else the folder itself would be in use
    RMDir /r "$INSTDIR\${ASIDE}"
    RMDir /r "$INSTDIR\${DONE}"
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
    ${Log} "Removed (exit code 0)"
SectionEnd
