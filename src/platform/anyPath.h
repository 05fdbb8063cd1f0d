#pragma once

/// @file
/// The calls that take a path, for paths of any length that the system allows.
///
/// On Windows the calls for narrow texts end at 260 characters; a longer path is handed to the wide
/// call in the form that has no such end. Elsewhere these are the calls themselves. Failures leave
/// the last error set, as the calls do.

#include <platform/platform.h>

#include <filesystem>
#include <string>

/// What a search finds: a name and its attributes. `handle` is INVALID_HANDLE_VALUE if none is
/// under way.
struct KrSearch
{
    HANDLE handle = INVALID_HANDLE_VALUE;
    const char* name = nullptr; ///< until the next step
    DWORD attributes = 0;
#if defined(_WIN32)
    WIN32_FIND_DATAW data;
    std::string storage;
#else
    WIN32_FIND_DATAA data;
#endif
};

/// Begins to list a directory, which `folder` names. Close the handle with `FindClose`.
bool krFindFirst(const char* folder, KrSearch& search);
bool krFindNext(KrSearch& search);

HANDLE krCreateFile(const char* path, DWORD access, DWORD share, DWORD disposition,
                    DWORD flagsAndAttributes = FILE_ATTRIBUTE_NORMAL);
DWORD krGetAttributes(const char* path);
bool krSetAttributes(const char* path, DWORD attributes);
bool krDescribe(const char* path, WIN32_FILE_ATTRIBUTE_DATA& data);
bool krDeleteFile(const char* path);
bool krMoveFile(const char* from, const char* to, DWORD flags);
bool krCreateDirectory(const char* path);
bool krRemoveDirectory(const char* path);

/// Gives a file what another one has of protection, as far as the system lets it: on Windows the
/// access list and the attributes for hiding, archiving and indexing, elsewhere the owner, the
/// group and the permission bits.
void krCopyProtection(const char* from, const char* to);

/// The runtime's `rename`.
bool krRename(const char* from, const char* to);

/// The full path, however long, and where its last element begins (the length if there is none);
/// false with the last error set.
bool krGetFullPath(const char* path, std::string& full, std::size_t& lastElement);

/// Between the library's narrow texts and the standard library's paths.
std::filesystem::path krToStdPath(const char* path);
/// @return false if the path has a name that the system's narrow texts cannot hold
bool krFromStdPath(const std::filesystem::path& path, std::string& text);
