@echo off
rem Registers the data source for all users. Needs an elevated prompt.
"%~dp0texttables.exe" register
