// Files, paths and directories, beside the system's calls and the standard library. The files lie
// in the temporary directory and are in the page cache.

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
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

constexpr std::size_t blockSize = 65536;

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
        const std::vector<char> block(1 << 20, 'x');
        std::ofstream stream(name, std::ios::binary);
        for (int i = 0; i < 256; ++i)
            stream.write(block.data(), static_cast<std::streamsize>(block.size()));
        return name;
    }();
    return path;
}

void copyByLibrary(const std::string& from, const std::string& to)
{
    Kr::OsFile(from).copyTo(to);
}

void copyByLoop(const std::string& from, const std::string& to)
{
    const int in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const auto block = std::make_unique<char[]>(blockSize);
    while (const ssize_t size = ::read(in, block.get(), blockSize))
        if (size < 0 || ::write(out, block.get(), static_cast<std::size_t>(size)) != size)
            std::abort();
    ::close(out);
    ::close(in);
}

void copyByStandard(const std::string& from, const std::string& to)
{
    fs::copy_file(from, to, fs::copy_options::overwrite_existing);
}

void copyByCommand(const std::string& from, const std::string& to)
{
    if (std::system(("cp '" + from + "' '" + to + "'").c_str()) != 0) // NOLINT: the peer
        std::abort();
}

template <void (*copy)(const std::string&, const std::string&)>
void copyFile(benchmark::State& state)
{
    const std::string from = sourceFile();
    const std::string to = Folder::get() / "copy";
    for (auto _ : state)
    {
        copy(from, to);
        state.PauseTiming();
        fs::remove(to);
        state.ResumeTiming();
    }
}
BENCHMARK_TEMPLATE(copyFile, copyByLibrary)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(copyFile, copyByLoop)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(copyFile, copyByStandard)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(copyFile, copyByCommand)->UseRealTime()->Unit(benchmark::kMillisecond);

// Writing and reading 1 GiB by 64 KiB

constexpr int blockCount = 16384;

struct Library
{
    static void write(const std::string& path, const char* block)
    {
        Kr::OsFileWriter writer(path, Kr::OsFileTypes::Permissions(3, 3, 0), false);
        for (int i = 0; i < blockCount; ++i)
            if (writer.write(block, blockSize) != blockSize)
                std::abort();
        writer.close();
    }
    static void read(const std::string& path, char* block)
    {
        Kr::OsFileReader reader(path);
        while (reader.read(block, blockSize) != 0)
            benchmark::ClobberMemory();
    }
};

struct System
{
    static void write(const std::string& path, const char* block)
    {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        for (int i = 0; i < blockCount; ++i)
            if (::write(file, block, blockSize) != ssize_t{blockSize})
                std::abort();
        ::close(file);
    }
    static void read(const std::string& path, char* block)
    {
        const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        while (::read(file, block, blockSize) > 0)
            benchmark::ClobberMemory();
        ::close(file);
    }
};

struct Stdio
{
    static void write(const std::string& path, const char* block)
    {
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        for (int i = 0; i < blockCount; ++i)
            if (std::fwrite(block, 1, blockSize, file) != blockSize)
                std::abort();
        std::fclose(file);
    }
    static void read(const std::string& path, char* block)
    {
        std::FILE* const file = std::fopen(path.c_str(), "rb");
        while (std::fread(block, 1, blockSize, file) != 0)
            benchmark::ClobberMemory();
        std::fclose(file);
    }
};

template <class Way>
void writeFile(benchmark::State& state)
{
    const std::string path = Folder::get() / "large";
    const std::vector<char> block(blockSize, 'x');
    for (auto _ : state)
    {
        Way::write(path, block.data());
        state.PauseTiming();
        fs::remove(path);
        state.ResumeTiming();
    }
}
BENCHMARK_TEMPLATE(writeFile, Library)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(writeFile, System)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(writeFile, Stdio)->UseRealTime()->Unit(benchmark::kMillisecond);

template <class Way>
void readFile(benchmark::State& state)
{
    const std::string path = Folder::get() / "large";
    std::vector<char> block(blockSize, 'x');
    System::write(path, block.data());
    for (auto _ : state)
        Way::read(path, block.data());
    fs::remove(path);
}
BENCHMARK_TEMPLATE(readFile, Library)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(readFile, System)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(readFile, Stdio)->UseRealTime()->Unit(benchmark::kMillisecond);

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
void joinPaths(benchmark::State& state)
{
    const typename Way::Path folder = Way::make();
    for (auto _ : state)
        for (int i = 0; i < pathCount; ++i)
            benchmark::DoNotOptimize(Way::join(folder));
}
BENCHMARK_TEMPLATE(joinPaths, LibraryPath)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(joinPaths, StandardPath)->Unit(benchmark::kMillisecond);

template <class Way>
void baseNames(benchmark::State& state)
{
    typename Way::Path path = Way::join(Way::make());
    for (auto _ : state)
        for (int i = 0; i < pathCount; ++i)
            benchmark::DoNotOptimize(Way::baseName(path));
}
BENCHMARK_TEMPLATE(baseNames, LibraryPath)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(baseNames, StandardPath)->Unit(benchmark::kMillisecond);

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

std::size_t walkByLibrary()
{
    std::size_t count = 0;
    for (Kr::OsDirWalker walker(tree()); walker.next();)
        count += walker.getEntry().getName()[0] != '\0' ? 1 : 0;
    return count;
}

std::size_t walkByStandard()
{
    std::size_t count = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(tree()))
        count += entry.path().empty() ? 0 : 1;
    return count;
}

std::size_t walkByCommand()
{
    const std::string command = "find '" + tree() + "' > /dev/null";
    if (std::system(command.c_str()) != 0) // NOLINT: the peer
        std::abort();
    return entryCount;
}

template <std::size_t (*walk)()>
void walkTree(benchmark::State& state)
{
    tree();
    for (auto _ : state)
        if (walk() != entryCount)
            std::abort();
}
BENCHMARK_TEMPLATE(walkTree, walkByLibrary)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(walkTree, walkByStandard)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(walkTree, walkByCommand)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
