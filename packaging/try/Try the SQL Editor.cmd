@echo off
rem Opens the SQL Editor over a sample that needs no database. Nothing is registered; what the window keeps is its place and size.
setlocal
cd /d "%~dp0"
set width=x86
if /i "%PROCESSOR_ARCHITECTURE%"=="AMD64" set width=x64
if /i "%PROCESSOR_ARCHITEW6432%"=="AMD64" set width=x64
if not exist "%width%\kolvex-demo.exe" (
    echo The demonstration host is missing: unpack the whole zip to a folder first, then start this file there.
    set result=3
    goto end
)
if "%~1"=="" (
    "%width%\kolvex-demo.exe" --unregistered --sample
) else (
    "%width%\kolvex-demo.exe" --unregistered %*
)
set result=%errorlevel%
:end
echo.
if not defined BRV_NO_PAUSE pause
exit /b %result%
