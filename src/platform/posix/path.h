#pragma once

/// @file
/// The system's paths on a POSIX host.

#include <cstddef>
#include <string>

/// Turns a path with either separator, with or without drive C:, into the host's form. Null, with
/// the last error set, for an empty path, another drive, or a character that no name may hold.
/// @param storage holds the result
const char* krHostPath(const char* path, std::string& storage) noexcept;

/// Sets the last error for a call on that host path that has just failed: a missing folder on the
/// way is a missing path, a missing last name a missing file.
void krSetPathError(const char* hostPath) noexcept;

/// The system's full path, and where its last element begins (the length if there is none); false
/// with the last error set.
bool krFindFullPath(const char* path, std::string& full, std::size_t& lastElement) noexcept;
