// Whose a file is and what else the system keeps about it, carried over to the file that replaces
// it.
#pragma once

#include <windows.h>

#include <string>

// Gives the open file `to` the owner, group and access list, the attributes and the time of
// creation of the open file `from`, which lies at `path`. False, and `to` has some of them, when it
// cannot have all or when `from` has further streams, which are not copied.
bool TakeOverRights(const std::wstring& path, HANDLE from, HANDLE to);
