// Files, paths and directories, beside the system's calls and the standard library. The files lie
// in the temporary directory and are in the page cache.

#include "race.h"

#include <base/osDirWalker.h>
#include <base/osFile.h>
#include <base/osFilePath.h>
#include <base/osFileReader.h>
#include <base/osFileWriter.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

constexpr std::size_t blockSize = 65536;

/// What all read into and write from: memory that lies that far behind the start of a page. Some
/// processors take several times as long to copy from one page to a place some bytes further in
/// another.
char* getBlock(std::size_t offset)
{
    constexpr std::size_t pageSize = 4096;
    alignas(pageSize) static char memory[pageSize + blockSize];
    return memory + offset;
}

char* const block = getBlock(64);

/// Where a large block from `new` begins in its page.
constexpr std::size_t offsetByNew = 16;

void check(bool holds)
{
    if (!holds)
        std::abort();
}

/// The folder of the run, removed at its end.
class Folder
{
public:
    static const Folder& get()
    {
        static const Folder folder;
        return folder;
    }

    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder()
    {
        std::error_code error;
        fs::remove_all(_path, error);
    }

    std::string operator/(const char* name) const { return (_path / name).string(); }

private:
    Folder()
        : _path(fs::temp_directory_path() / ("krbase-bench-" + std::to_string(::getpid())))
    {
        fs::create_directories(_path);
    }

    const fs::path _path;
};

// Copies of 256 MiB

std::string sourceFile()
{
    static const std::string path = []
    {
        const std::string name = Folder::get() / "source";
        const std::vector<char> mebibyte(1 << 20, 'x');
        std::ofstream stream(name, std::ios::binary);
        for (int i = 0; i < 256; ++i)
            stream.write(mebibyte.data(), static_cast<std::streamsize>(mebibyte.size()));
        return name;
    }();
    return path;
}

void copyByLibrary(const std::string& from, const std::string& to)
{
    Kr::OsFile(from).copyTo(to);
}

void copyByLoop(const std::string& from, const std::string& to, char* through)
{
    const int in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    while (const ssize_t size = ::read(in, through, blockSize))
        check(size > 0 && ::write(out, through, static_cast<std::size_t>(size)) == size);
    ::close(out);
    ::close(in);
}

void copyByStandard(const std::string& from, const std::string& to)
{
    fs::copy_file(from, to, fs::copy_options::overwrite_existing);
}

void copyByCommand(const std::string& from, const std::string& to)
{
    check(std::system(("cp '" + from + "' '" + to + "'").c_str()) == 0); // NOLINT: the peer
}

void copyFile(benchmark::State& state)
{
    const std::string from = sourceFile();
    const std::string to = Folder::get() / "copy";
    race(state, benchmark::kMillisecond,
         {{"library", [&] { copyByLibrary(from, to); }},
          {"loop", [&] { copyByLoop(from, to, block); }},
          {"loopByNew", [&] { copyByLoop(from, to, getBlock(offsetByNew)); }},
          {"standard", [&] { copyByStandard(from, to); }},
          {"command", [&] { copyByCommand(from, to); }}},
         [&] { fs::remove(to); });
}
BENCHMARK(copyFile)->Iterations(5)->Unit(benchmark::kMillisecond);

// Writing and reading 1 GiB by 64 KiB

constexpr int blockCount = 16384;

struct Library
{
    static void write(const std::string& path)
    {
        Kr::OsFileWriter writer(path, Kr::OsFileTypes::Permissions(3, 3, 0), false);
        for (int i = 0; i < blockCount; ++i)
            check(writer.write(block, blockSize) == blockSize);
        writer.close();
    }
    static void read(const std::string& path)
    {
        Kr::OsFileReader reader(path);
        while (reader.read(block, blockSize) != 0)
            benchmark::ClobberMemory();
    }
};

struct System
{
    static void write(const std::string& path)
    {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        for (int i = 0; i < blockCount; ++i)
            check(::write(file, block, blockSize) == ssize_t{blockSize});
        ::close(file);
    }
    static void read(const std::string& path)
    {
        const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        while (::read(file, block, blockSize) > 0)
            benchmark::ClobberMemory();
        ::close(file);
    }
};

struct Stdio
{
    static void write(const std::string& path)
    {
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        for (int i = 0; i < blockCount; ++i)
            check(std::fwrite(block, 1, blockSize, file) == blockSize);
        std::fclose(file);
    }
    static void read(const std::string& path)
    {
        std::FILE* const file = std::fopen(path.c_str(), "rb");
        while (std::fread(block, 1, blockSize, file) != 0)
            benchmark::ClobberMemory();
        std::fclose(file);
    }
};

void writeFile(benchmark::State& state)
{
    const std::string path = Folder::get() / "large";
    race(state, benchmark::kMillisecond,
         {{"library", [&] { Library::write(path); }},
          {"system", [&] { System::write(path); }},
          {"stdio", [&] { Stdio::write(path); }}},
         [&] { fs::remove(path); });
}
BENCHMARK(writeFile)->Iterations(3)->Unit(benchmark::kMillisecond);

void readFile(benchmark::State& state)
{
    const std::string path = Folder::get() / "large";
    System::write(path);
    race(state, benchmark::kMillisecond,
         {{"library", [&] { Library::read(path); }},
          {"system", [&] { System::read(path); }},
          {"stdio", [&] { Stdio::read(path); }}});
    fs::remove(path);
}
BENCHMARK(readFile)->Iterations(5)->Unit(benchmark::kMillisecond);

// Paths, a million of each

constexpr int pathCount = 1000000;

struct LibraryPath
{
    using Path = Kr::OsFilePath;
    static Path make() { return "C:\\projects\\viewer\\textures"; }
    static Path join(const Path& folder) { return folder + "marble-0001.png"; }
    static Path baseName(Path& path) { return path.getBaseName(); }
};

struct StandardPath
{
    using Path = fs::path;
    static Path make() { return "/projects/viewer/textures"; }
    static Path join(const Path& folder) { return folder / "marble-0001.png"; }
    static Path baseName(Path& path) { return path.filename(); }
};

template <class Way>
void joinPaths(const typename Way::Path& folder)
{
    for (int i = 0; i < pathCount; ++i)
        benchmark::DoNotOptimize(Way::join(folder));
}

template <class Way>
void takeBaseNames(typename Way::Path path)
{
    for (int i = 0; i < pathCount; ++i)
        benchmark::DoNotOptimize(Way::baseName(path));
}

void joinPaths(benchmark::State& state)
{
    const LibraryPath::Path path = LibraryPath::make();
    const StandardPath::Path standard = StandardPath::make();
    race(state, benchmark::kMillisecond,
         {{"library", [&] { joinPaths<LibraryPath>(path); }},
          {"standard", [&] { joinPaths<StandardPath>(standard); }}});
}
BENCHMARK(joinPaths)->Iterations(5)->Unit(benchmark::kMillisecond);

void baseNames(benchmark::State& state)
{
    const LibraryPath::Path path = LibraryPath::join(LibraryPath::make());
    const StandardPath::Path standard = StandardPath::join(StandardPath::make());
    race(state, benchmark::kMillisecond,
         {{"library", [&] { takeBaseNames<LibraryPath>(path); }},
          {"standard", [&] { takeBaseNames<StandardPath>(standard); }}});
}
BENCHMARK(baseNames)->Iterations(5)->Unit(benchmark::kMillisecond);

// A walk of 100,000 files in 1,000 directories

constexpr std::size_t entryCount = 101000;

const std::string& tree()
{
    static const std::string path = []
    {
        const std::string root = Folder::get() / "tree";
        for (int i = 0; i < 1000; ++i)
        {
            const std::string folder = root + "/d" + std::to_string(i);
            fs::create_directories(folder);
            for (int j = 0; j < 100; ++j)
                std::ofstream(folder + "/file" + std::to_string(j));
        }
        return root;
    }();
    return path;
}

void walkByLibrary()
{
    std::size_t count = 0;
    for (Kr::OsDirWalker walker(tree()); walker.next();)
        count += walker.getEntry().getName()[0] != '\0' ? 1 : 0;
    check(count == entryCount);
}

void walkByStandard()
{
    std::size_t count = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(tree()))
        count += entry.path().empty() ? 0 : 1;
    check(count == entryCount);
}

void walkByCommand()
{
    const std::string command = "find '" + tree() + "' > /dev/null";
    check(std::system(command.c_str()) == 0); // NOLINT: the peer
}

void walkTree(benchmark::State& state)
{
    tree();
    race(state, benchmark::kMillisecond,
         {{"library", walkByLibrary}, {"standard", walkByStandard}, {"command", walkByCommand}});
}
BENCHMARK(walkTree)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace
