@echo off
rem Plays the scripts in the reference terminal on this Windows, checks the programs, and leaves the report beside itself.
setlocal
set "here=%~dp0"
set "report=%here%selftest-report.txt"
set "stage=%TEMP%\planfold-selftest"
set failed=0

echo Planfold self test > "%report%"
ver >> "%report%"
for %%s in (@scripts@) do call :play %%s
"%here%tools\planfold-hostcheck.exe" "%here%reference\VeskTrader.exe" >> "%report%" 2>&1
if errorlevel 1 set failed=1
"%here%tools\planfold-hostcheck.exe" "%here%terminal-plugin\Vesk Plugins\Planfold.zup" >> "%report%" 2>&1
if errorlevel 1 set failed=1
"%here%tools\planfold-basket.exe" check "%here%reference\data\baskets\good.csv" --scrips "%here%reference\data\scrips.csv" --products CNC,MIS >> "%report%" 2>&1
if errorlevel 1 set failed=1
"%here%reference\veskserver.exe" --version >> "%report%" 2>&1
if errorlevel 1 set failed=1

if %failed%==0 echo everything passed >> "%report%"
if not %failed%==0 echo something failed; the logs are in %stage% >> "%report%"
type "%report%"
exit /b %failed%

rem Each script has a fresh copy of the terminal, without what was tried in it before.
:play
if exist "%stage%\%~1" rmdir /s /q "%stage%\%~1"
xcopy /e /i /q /y "%here%reference" "%stage%\%~1" > nul
if exist "%stage%\%~1\data\user" rmdir /s /q "%stage%\%~1\data\user"
del /q "%stage%\%~1\data\journal*" > nul 2>&1
mkdir "%stage%\%~1\out"
start "" /wait "%stage%\%~1\VeskTrader.exe" --script "%here%selftest\%~1.script" --log "%stage%\%~1\out\%~1.log" --out "%stage%\%~1\out"
find "script passed" "%stage%\%~1\out\%~1.log" > nul 2>&1
if errorlevel 1 goto :broken
echo %~1: passed >> "%report%"
goto :eof
:broken
echo %~1: FAILED >> "%report%"
set failed=1
goto :eof
