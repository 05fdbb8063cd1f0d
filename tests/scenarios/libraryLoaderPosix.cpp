#include "libraryLoader.h"

#include <cstdio>
#include <dlfcn.h>

void* LibraryLoader::load(const char* path)
{
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        std::fprintf(stderr, "%s\n", dlerror());
    return library;
}

bool LibraryLoader::unload(void* library)
{
    return dlclose(library) == 0;
}
