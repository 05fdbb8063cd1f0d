#include <base/hmGC.h>

#include <base/hmGCEx.h>
#include <base/internal/heap/hmCheckingHeap.h>
#include <base/lmList.h>
#include <base/raise.h>

#include <cstring>
#include <ostream>
#include <string>
#include <utility>

namespace Kr
{

namespace
{

const char* getText(const ArrayPtr<char>& frame)
{
    return frame.get();
}

const char* getText(const char* frame)
{
    return frame;
}

bool beginsWith(const char* text, const char* beginning)
{
    return std::strncmp(text, beginning, std::strlen(beginning)) == 0;
}

/// Whether the words from here to "ENDL" match the frames. Leaves the position where it stopped.
template <class Frame>
bool matchesBlock(const Frame* frames, const char*& position)
{
    for (std::size_t i = 0;; ++i)
    {
        const char* const blank = std::strchr(position, ' ');
        position = blank != nullptr ? blank + 1 : position + std::strlen(position);
        if (blank == nullptr) // the block has no end
            return false;
        if (beginsWith(position, "ENDL"))
            return true;
        const char* const frame = getText(frames[i]);
        if (frame == nullptr || !beginsWith(position, frame))
            return false;
    }
}

template <class Frame>
bool isUnknown(const Frame* frames, const char* text)
{
    const char* position = text;
    while (position != nullptr && (position = std::strstr(position, "KNOWNLEAK")) != nullptr)
        if (matchesBlock(frames, position))
            return false;
    return true;
}

void store(ArrayPtr<char>& destination, const std::string& text)
{
    destination = ArrayPtr<char>(new char[text.size() + 1]);
    std::memcpy(destination.get(), text.c_str(), text.size() + 1);
}

} // namespace

HmGC::HmGC() = default;
HmGC::~HmGC() = default;

std::ostream* HmGC::setOutput(std::ostream* os)
{
    return std::exchange(_output, os);
}

bool HmGC::setThrowException(bool on)
{
    return std::exchange(_throwException, on);
}

bool HmGC::setStackDump(bool on)
{
    return std::exchange(_stackDump, on);
}

const char* HmGC::setKnownLeaks(const char* text)
{
    return std::exchange(_knownLeaks, text);
}

void HmGC::validateAndPrint(void* block)
{
    HmCheckingHeap::Block found;
    if (!HmCheckingHeap::find(block, found))
        return;
    ArrayPtr<char> frames[HmCheckingHeap::depth + 1];
    ArrayPtr<char> libraries[HmCheckingHeap::depth + 1];
    void* stack[HmCheckingHeap::depth + 1] = {};
    std::memcpy(stack, found.frames, sizeof found.frames);
    extractCallStack(stack, frames, libraries);
    if (_knownLeaks != nullptr && !isLeakValid(frames, _knownLeaks))
        return;
    std::size_t count = 0;
    while (stack[count] != nullptr)
        ++count;
    printLeak(found.size, HmCheckingHeap::getOwnerName(found.owner), frames, count);
    if (_throwException)
        raise<HmGCEx::ExGarbageDetected>(KR_HERE);
}

void HmGC::extractCallStack(void** stack, ArrayPtr<char>* frames, ArrayPtr<char>* libraries)
{
    if (!isMemDebugLoaded())
        return;
    const LmList list;
    for (std::size_t i = 0; stack[i] != nullptr; ++i)
    {
        const LmList::Library* const library = list.find(stack[i]);
        store(frames[i], list.describe(stack[i]));
        store(libraries[i], library != nullptr ? library->path : std::string());
    }
}

void HmGC::printLeak(std::size_t size, const char* package, const ArrayPtr<char>* frames,
                     std::size_t count)
{
    if (!isMemDebugLoaded() || _output == nullptr)
        return;
    *_output << "Leak of " << size << " bytes, " << package << '\n';
    if (!_stackDump)
        return;
    for (std::size_t i = 0; i < count; ++i)
        *_output << "    " << frames[i].get() << '\n';
}

bool HmGC::isLeakValid(const ArrayPtr<char>* frames, const char* text)
{
    return isUnknown(frames, text);
}

bool HmGC::isLeakValid(const char* const* frames, const char* text)
{
    return isUnknown(frames, text);
}

bool HmGC::isMemDebugLoaded()
{
    return HmCheckingHeap::isActive();
}

void HmGC::operator delete(void*) noexcept
{
}

} // namespace Kr
