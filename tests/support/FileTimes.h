// The times of a file.
#pragma once

#include <filesystem>

// Sets last access and last modification, in seconds since 1970. Throws std::system_error.
void SetFileTimes(const std::filesystem::path& file, long access, long modification);
