@echo off
rem Takes the registration back. Needs an elevated prompt.
"%~dp0texttables.exe" unregister
