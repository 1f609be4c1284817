@echo off
rem Tries the module on this machine: prove.cmd [short ^| clean ^| PARTS...]. See README.txt.
if not exist "%~dp0prove.exe" (
  echo Unpack the whole archive first.
  exit /b 2
)
"%~dp0prove.exe" %*
exit /b %errorlevel%
