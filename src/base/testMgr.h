#pragma once

/// @file
/// Runs the tests of a program and its libraries, as its command line asks for.
/// @code{.cpp}
/// int main(int argc, char** argv)
/// {
///     return Kr::TestMgr::main(argc, argv);
/// }
/// @endcode
/// The program then knows the tests by patterns, such as "vectors", "vectors.add", "*.add*" or
/// "-images.large*", which leaves tests out; all run if there are none. Of the options, `--help`
/// lists all, `--isolate` runs each group in a process of its own, so that a crash costs one test,
/// and `--junit=FILE` writes a report that build servers read. A page of the documentation has the
/// rest.
///
/// | variable              | option                 | meaning                                    |
/// |-----------------------|------------------------|--------------------------------------------|
/// | `KR_TEST_DIR`         | `--testing.directory`  | where tests have their files: `getFile`    |
/// | `KR_RUN_TEST_MSGS`    | `--testing.messages`   | show the log's messages as they come       |
///
/// Pitfall: an isolated process is this program again with the same arguments, so that whatever
/// `main` does before comes to pass in each.

#include <base/krBaseApi.h>
#include <base/osFilePath.h>
#include <base/testEx.h>
#include <base/testGroup.h>

#include <string>
#include <vector>

namespace Kr
{

class KR_BASE_API TestMgr
{
public:
    /// Starts the packages, runs the tests, and returns the status for `main`: 0 if no test has
    /// failed, 1 if one has, 2 if they could not be run as asked for, which standard error
    /// explains.
    static int main(int argc, char** argv);

    /// The same for a program that starts its packages itself.
    /// @param words its command line without the program's name
    /// Returns 0 or 1. Raises `TestEx` for what cannot be run as asked for: for an unknown option,
    /// and for a pattern that names no test, with the nearest names that there are.
    static int run(const std::vector<std::string>& words);

    /// For the running test: the path of a file below `KR_TEST_DIR`, or of the current folder if
    /// that is not set.
    static OsFilePath getFile(const std::string& name);
};

} // namespace Kr
