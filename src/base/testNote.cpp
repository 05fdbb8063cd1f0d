#include <base/testNote.h>

#include <exception>
#include <utility>

namespace Kr
{

namespace
{

thread_local const TestNote* newest = nullptr;
thread_local std::string unwound;

} // namespace

TestNote::TestNote(Text text)
    : _text(std::move(text.text))
    , _exceptions(std::uncaught_exceptions())
    , _previous(std::exchange(newest, this))
{
}

TestNote::~TestNote()
{
    newest = _previous;
    if (std::uncaught_exceptions() > _exceptions)
        unwound.insert(0, "\nnote: " + _text); // the inner ones end first
}

std::string TestNote::getAll()
{
    std::string all;
    for (const TestNote* note = newest; note != nullptr; note = note->_previous)
        all.insert(0, "\nnote: " + note->_text);
    return all;
}

std::string TestNote::getUnwound()
{
    return unwound;
}

void TestNote::forgetUnwound() noexcept
{
    std::string().swap(unwound); // which releases the memory, too
}

} // namespace Kr
