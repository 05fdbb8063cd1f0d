#include "libraryLoader.h"

#include <cstdio>
#include <windows.h>

void* LibraryLoader::load(const char* path)
{
    const HMODULE library = LoadLibraryA(path);
    if (library == nullptr)
        std::fprintf(stderr, "%s: system error %lu\n", path, GetLastError());
    return library;
}

bool LibraryLoader::unload(void* library)
{
    return FreeLibrary(static_cast<HMODULE>(library)) != 0;
}
