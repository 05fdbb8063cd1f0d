// Lines of any form, as kr-log may find them in a file: each is taken apart, whatever it is, and
// what is shown of it is one line that no terminal obeys, or one JSON object.

#include <logJson.h>
#include <logRecord.h>

#include <logTestFiles.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace
{

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view line(reinterpret_cast<const char*>(data), size);
    const KrLog::Record record = KrLog::parseRecord(line);
    require(record.level <= Kr::LgTypes::NUM_LEVELS);
    require(!record.isForeign() || record.text == line);
    for (const std::string& each : {record.time, record.getThread(), record.group, record.text})
    {
        std::string shown;
        KrLog::appendVisible(shown, each);
        const auto isControl = [](char c)
        { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; };
        require(std::none_of(shown.begin(), shown.end(), isControl));
        std::string json;
        KrLog::appendJson(json, each);
        require(LogTest::JsonCheck::isValue(json));
    }
    return 0;
}
