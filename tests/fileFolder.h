#pragma once

/// @file
/// A folder for the files of a test.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

/// A new folder among the temporary files, removed with everything in it at the end.
class FileFolder
{
public:
    FileFolder()
        : _path(std::filesystem::temp_directory_path() /
                ("krbase-files-" + std::to_string(std::random_device()())))
    {
        std::filesystem::create_directories(_path);
    }

    FileFolder(const FileFolder&) = delete;
    FileFolder& operator=(const FileFolder&) = delete;

    ~FileFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(_path, error);
    }

    const std::filesystem::path& getPath() const { return _path; }
    std::filesystem::path operator/(const std::string& name) const { return _path / name; }

    static std::string read(const std::filesystem::path& path)
    {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    const std::filesystem::path _path;
};
