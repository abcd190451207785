@echo off
rem What control-center.wsb does in its throw-away machine.
cd /d "%~dp0"
call run-tests.cmd
call install-demo.cmd
for %%i in (*.msi) do msiexec /i "%~dp0%%i" /qn /l*v "%~dp0install.log"
echo The installer ended with %errorlevel% (0: done). Its log is install.log.
start "" notepad checklist.md
start "" "%ProgramFiles%\Vantrel Imaging\Control Center\korcontrolcenter.exe"
