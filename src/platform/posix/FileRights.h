// Whose a file is and what else the system keeps about it, carried over to the file that replaces
// it.
#pragma once

#include <sys/stat.h>

#include <string>

// Gives the open file `to` owner, group, mode, access lists and other extended attributes, and file
// flags of the file at `path`, whose status is `status`. False, and `to` has some of them, when it
// cannot have all. What tells of a file's contents (signatures of the system's) is left out.
bool TakeOverRights(const std::string& path, const struct stat& status, int to);
