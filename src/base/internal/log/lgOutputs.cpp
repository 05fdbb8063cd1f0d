#include <base/internal/log/lgOutputs.h>

#include <base/internal/log/lgStandardStream.h>
#include <base/internal/log/lgTimedFile.h>

#include <algorithm>

namespace Kr
{

namespace
{

bool isSame(const LgDestination& a, const LgDestination& b)
{
    return a.kind == b.kind && (a.kind != LgDestination::file || a.path == b.path);
}

std::shared_ptr<LgOutput> makeFile(const std::string& path, const LgSettings& settings,
                                   LgLineFormat& format, const std::shared_ptr<LgHelper>& helper)
{
    LgFileSettings file;
    file.path = path;
    file.privateFolder = settings.getPrivateFolder(path);
    file.maxSize = settings.maxFileSize;
    file.keptFiles = settings.keptFiles;
    file.isLocked = settings.isLockedBetweenProcesses;
    const std::uint64_t maxBatch = file.maxSize != 0 ? file.maxSize : LgOutput::batchSize;
    return std::make_shared<LgOutput>(
        LgTimedFile::create(file, helper), path, format,
        static_cast<std::size_t>(std::min<std::uint64_t>(maxBatch, LgOutput::batchSize)));
}

std::shared_ptr<LgOutput> makeStream(std::FILE* stream, const char* name, LgLineFormat& format,
                                     const std::shared_ptr<LgHelper>& helper)
{
    return std::make_shared<LgOutput>(
        std::make_unique<LgTimedFile>(std::make_unique<LgStandardStream>(stream), helper,
                                      LgStandardStream::patience),
        name, format);
}

std::shared_ptr<LgOutput> makeOutput(const LgDestination& destination, const LgSettings& settings,
                                     LgLineFormat& format, const std::shared_ptr<LgHelper>& helper)
{
    switch (destination.kind)
    {
    case LgDestination::standardOutput:
        return makeStream(stdout, "the standard output", format, helper);
    case LgDestination::standardError:
        return makeStream(stderr, "the standard error stream", format, helper);
    case LgDestination::file:
        return makeFile(destination.path, settings, format, helper);
    case LgDestination::none:
        break;
    }
    return nullptr;
}

} // namespace

void LgOutputs::open(const LgSettings& settings, LgLineFormat& format)
{
    const auto& destinations = settings.destinations;
    for (std::size_t i = 0; i < destinations.size(); ++i)
    {
        const auto same =
            std::find_if(destinations.begin(), destinations.end(),
                         [&](const LgDestination& each) { return isSame(each, destinations[i]); });
        const auto first = static_cast<std::size_t>(same - destinations.begin());
        setOutput(static_cast<LgTypes::Level>(i),
                  first == i ? makeOutput(destinations[i], settings, format, _helper)
                             : _outputs[first]);
    }
}

void LgOutputs::setOutput(LgTypes::Level level, std::shared_ptr<LgOutput> output)
{
    _outputs[level] = std::move(output);
    _distinctOutputs.clear();
    for (const std::shared_ptr<LgOutput>& each : _outputs)
        if (each != nullptr && std::find(_distinctOutputs.begin(), _distinctOutputs.end(),
                                         each.get()) == _distinctOutputs.end())
            _distinctOutputs.push_back(each.get());
}

void LgOutputs::write(const LgRecord& record) noexcept
{
    if (_outputs[record.level] != nullptr)
        _outputs[record.level]->write(record);
}

void LgOutputs::flush(bool now) noexcept
{
    for (LgOutput* output : _distinctOutputs)
        output->flush(now);
}

void LgOutputs::sync() noexcept
{
    for (LgOutput* output : _distinctOutputs)
        output->sync();
}

void LgOutputs::close() noexcept
{
    for (LgOutput* output : _distinctOutputs)
        output->close();
}

std::uint64_t LgOutputs::getLostCount() const
{
    std::uint64_t count = 0;
    for (const LgOutput* output : _distinctOutputs)
        count += output->getLostCount();
    return count;
}

} // namespace Kr
