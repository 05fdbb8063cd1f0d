#pragma once

/// Loads a library at run time; the build picks the system's half.
namespace LibraryLoader
{

/// The library's handle, or null.
void* load(const char* path);
bool unload(void* library);

} // namespace LibraryLoader
