@echo off
rem Runs the test programs and collects what they print in results.txt. run-tests.cmd PATTERN runs those of
rem that name. The programs delete keys and folders: outside Windows Sandbox they run only if the word
rem "expendable" is given, too.
setlocal
cd /d "%~dp0"
set "results=%~dp0results.txt"
set "pattern=*"
set "failed="
set "ran="
set "KOR_TEST_SANDBOX=1"
set "KOR_TEST_EXPENDABLE="

:arguments
if "%~1"=="" goto begin
if /i "%~1"=="expendable" (set "KOR_TEST_EXPENDABLE=1") else set "pattern=%~1"
shift
goto arguments

:begin
ver > "%results%"
tools\metrics.exe >> "%results%"
tests\base_tests.exe --gtest_list_tests > nul
if errorlevel 2 goto refused
for %%t in (tests\%pattern%.exe) do call :one "%%t"
if not defined ran goto none
if defined failed goto failed
echo All programs passed.>> "%results%"
echo All programs passed. What they printed is in results.txt.
exit /b 0

:one
set "ran=yes"
echo.>> "%results%"
echo ==== %~n1 >> "%results%"
if exist C:\tests-are-running del C:\tests-are-running
rem By a command processor of its own: Wine's keeps a file that takes both outputs.
cmd /c "%~1 > printed.txt 2>&1"
set "code=%errorlevel%"
type printed.txt >> "%results%"
rem A program that is lost on the way leaves this file behind.
if exist C:\tests-are-running set "code=%code%, lost on the way"
if "%code%"=="0" (
    echo ==== %~n1: passed>> "%results%"
    echo passed  %~n1
) else (
    echo ==== %~n1: FAILED, exit code %code% >> "%results%"
    echo FAILED  %~n1, exit code %code%
    set "failed=%failed% %~n1"
)
exit /b 0

:failed
echo FAILED:%failed%>> "%results%"
echo.
echo FAILED:%failed%
echo What the programs printed is in results.txt; look there for "[  FAILED  ]". The tests were written under
echo Wine, so some expectations may be Wine's and not Windows': a failure is a question, not yet a fault.
exit /b 1

:refused
echo The test programs refused to run: they delete registry keys and folders, so they want Windows Sandbox
echo (control-center.wsb). On a machine that nobody needs any more: run-tests.cmd expendable
exit /b 2

:none
echo There is no test program tests\%pattern%.exe
exit /b 2
