// Settings in the registry, beside a small file of lines that says the same. Both lie in the
// temporary directory and are in the page cache.

#include <base/osEnv.h>
#include <base/osRegistryKey.h>

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using Kr::OsRegistryKey;

constexpr const char* keyPath = "Software\\Bench\\Viewer";
constexpr std::size_t fileSize = 4096; // more than any file here

/// The name of the value in the middle.
std::string middleName(std::int64_t count)
{
    return "Value" + std::to_string(count / 2);
}

/// A registry and a file with so many integers each, removed at the end.
class Folder
{
public:
    explicit Folder(std::int64_t count)
        : _path(fs::temp_directory_path() / ("krbase-bench-" + std::to_string(::getpid())))
    {
        fs::create_directories(_path);
        Kr::OsEnv::putVariable(("XDG_CONFIG_HOME=" + _path.string()).c_str());
        OsRegistryKey key(OsRegistryKey::Root::User, keyPath, OsRegistryKey::Mode::Create);
        std::ofstream file(getFile());
        for (std::int64_t i = 0; i < count; ++i)
        {
            const std::string name = "Value" + std::to_string(i);
            key.setInteger32(name.c_str(), static_cast<std::int32_t>(i));
            file << name << '=' << i << '\n';
        }
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder()
    {
        std::error_code error;
        fs::remove_all(_path, error);
    }

    std::string getFile() const { return (_path / "settings").string(); }

private:
    const fs::path _path;
};

// Reading one setting

std::string_view readFile(const std::string& path, char* buffer)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const ssize_t size = ::read(file, buffer, fileSize);
    ::close(file);
    if (size < 0)
        std::abort();
    return {buffer, static_cast<std::size_t>(size)};
}

int findInLines(std::string_view text, const std::string& name)
{
    while (!text.empty())
    {
        const std::string_view line = text.substr(0, text.find('\n'));
        int value = 0;
        if (line.substr(0, name.size()) == name && line[name.size()] == '=')
        {
            std::from_chars(line.data() + name.size() + 1, line.data() + line.size(), value);
            return value;
        }
        text.remove_prefix(line.size() + 1);
    }
    std::abort();
}

void readFromOpenKey(benchmark::State& state)
{
    const Folder folder(state.range(0));
    const std::string name = middleName(state.range(0));
    const OsRegistryKey key(OsRegistryKey::Root::User, keyPath);
    for (auto _ : state)
        benchmark::DoNotOptimize(key.getInteger32(name.c_str()));
}
BENCHMARK(readFromOpenKey)->Arg(10)->Arg(100);

void openKeyAndRead(benchmark::State& state)
{
    const Folder folder(state.range(0));
    const std::string name = middleName(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(
            OsRegistryKey(OsRegistryKey::Root::User, keyPath).getInteger32(name.c_str()));
}
BENCHMARK(openKeyAndRead)->Arg(10)->Arg(100);

void readSmallFile(benchmark::State& state)
{
    const Folder folder(state.range(0));
    const std::string path = folder.getFile();
    char buffer[fileSize];
    for (auto _ : state)
        benchmark::DoNotOptimize(readFile(path, buffer).size());
}
BENCHMARK(readSmallFile)->Arg(10)->Arg(100);

void readAndParseSmallFile(benchmark::State& state)
{
    const Folder folder(state.range(0));
    const std::string path = folder.getFile();
    const std::string name = middleName(state.range(0));
    char buffer[fileSize];
    for (auto _ : state)
        benchmark::DoNotOptimize(findInLines(readFile(path, buffer), name));
}
BENCHMARK(readAndParseSmallFile)->Arg(10)->Arg(100);

// Storing one setting, on the disk by the end

void storeInKey(benchmark::State& state)
{
    const Folder folder(10);
    OsRegistryKey key(OsRegistryKey::Root::User, keyPath, OsRegistryKey::Mode::Write);
    std::int32_t value = 0;
    for (auto _ : state)
        key.setInteger32("Value5", ++value);
}
BENCHMARK(storeInKey)->UseRealTime();

/// What a careful program does by hand: a new file, flushed, in the place of the old one.
void replaceSmallFile(benchmark::State& state)
{
    const Folder folder(10);
    const std::string path = folder.getFile();
    const std::string temporary = path + ".new";
    char buffer[fileSize];
    const std::string_view text = readFile(path, buffer);
    for (auto _ : state)
    {
        const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        const bool isWritten =
            ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
        if (!isWritten || ::fsync(file) != 0 || ::close(file) != 0)
            std::abort();
        fs::rename(temporary, path);
    }
}
BENCHMARK(replaceSmallFile)->UseRealTime();

} // namespace
