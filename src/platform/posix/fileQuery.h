#pragma once

/// @file
/// The host's description of a file in the system's terms.

#include <platform/platform.h>

#include <sys/stat.h>

/// Steps of 100 nanoseconds since 1601.
FILETIME krFileTime(const timespec& time) noexcept;
timespec krTimespec(const FILETIME& time) noexcept;

/// The attributes of what the status describes.
DWORD krAttributes(const struct stat& status) noexcept;

/// The attributes at a host path, as `GetFileAttributesA` tells them, or INVALID_FILE_ATTRIBUTES
/// with the last error set.
/// @param status receives the host's status, of what a link leads to; null if it is not wanted
DWORD krPathAttributes(const char* hostPath, struct stat* status) noexcept;
