// Paths of performance counters and the kernel's tables: a path that is taken goes back to its own
// text, its parts make it again, and no table makes the parsers do anything but accept or refuse.

#include <base/prEx.h>
#include <base/prPath.h>

#include <platform/posix/performanceTables.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace
{

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

void takeApart(const std::string& text)
{
    try
    {
        const Kr::PrPath path(text);
        require(path.toString() == text, "the path's text is the one that it came from");
        require(!path.getObject().empty() && !path.getCounter().empty(), "the parts are there");
        const Kr::PrPath again(path.getObject(), path.getInstance(), path.getCounter());
        require(again == path, "the parts make the path");
    }
    catch (const Kr::PrEx::ExInvalidPath& error)
    {
        require(error.getReason()[0] != '\0', "a refusal says why");
    }
}

void parseTables(const std::string& text)
{
    KrProcessorTable processors;
    KrMemoryTable memory;
    KrPagingTable paging;
    KrProcessRecord process;
    std::vector<KrDiskRecord> disks;
    if (krParseProcessors(text, processors))
        require(text.find("cpu") != text.npos, "the processors are named");
    if (krParseMemory(text, memory))
        require(memory.total % 1024 == 0, "the memory is in kilobytes");
    krParsePaging(text, paging);
    if (krParseProcess(text, process))
        require(text.find('(' + process.name + ')') != text.npos, "the name is in the table");
    if (krParseDisks(text, disks))
        require(disks.empty() || text.find(disks.back().name) != text.npos, "so is a disk's");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    takeApart(text);
    parseTables(text);
    return 0;
}
