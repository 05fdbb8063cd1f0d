#include <base/threadName.h>

#include <base/internal/errors/threadLabel.h>

#include <algorithm>
#include <cstring>

namespace Kr
{

namespace
{

static_assert(std::size_t{ThreadName::size} == ThreadLabel::size);

// Plain thread-locals, which can be looked at while the thread ends.
thread_local char ownName[ThreadName::size] = "";
thread_local std::shared_ptr<ThreadLabel>* ownLabel = nullptr;
thread_local bool isEnded = false;

struct LabelEnd
{
    LabelEnd() = default;
    LabelEnd(const LabelEnd&) = delete;
    LabelEnd& operator=(const LabelEnd&) = delete;

    ~LabelEnd()
    {
        isEnded = true;
        delete ownLabel;
        ownLabel = nullptr;
    }

    void arm() {}
};

thread_local LabelEnd labelEnd;

template <std::size_t size>
void copyName(char (&to)[size], const char* name)
{
    const std::size_t length = std::min(std::strlen(name), size - 1);
    std::memmove(to, name, length);
    to[length] = '\0';
}

} // namespace

void ThreadName::set(const char* name)
{
    copyName(ownName, name != nullptr ? name : "");
    if (ownLabel != nullptr)
        (*ownLabel)->set(ownName);
}

const char* ThreadName::get() noexcept
{
    return ownName;
}

std::shared_ptr<ThreadLabel> ThreadLabel::ofCaller()
{
    if (ownLabel != nullptr)
        return *ownLabel;
    auto label = std::make_shared<ThreadLabel>();
    label->set(ownName);
    if (!isEnded)
    {
        labelEnd.arm();
        ownLabel = new std::shared_ptr<ThreadLabel>(label);
    }
    return label;
}

void ThreadLabel::set(const char* name)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    copyName(_name, name);
    _isNamed.store(*name != '\0', std::memory_order_relaxed);
}

void ThreadLabel::copyTo(std::string& text) const
{
    text.clear();
    if (!_isNamed.load(std::memory_order_relaxed))
        return;
    const std::lock_guard<std::mutex> lock(_mutex);
    text = _name;
}

} // namespace Kr
