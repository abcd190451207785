@echo off
rem Lays the demonstration installation of the library on drive C and into the registry. All its programs are
rem one stub that shows its command line.
cd /d "%~dp0"
xcopy "%~dp0demo\files" C:\ /E /I /Y > nul
if errorlevel 1 exit /b 1
reg import "%~dp0demo\registry.reg"
