#include <base/internal/testing/testException.h>

#include <base/exBase.h>
#include <base/internal/errors/demangle.h>
#include <base/testValue.h>

#include <cxxabi.h>
#include <exception>

namespace Kr
{

namespace
{

std::string describeKnown(const ExBase& error)
{
    return demangle(typeid(error).name()) + ": " + error.getReason();
}

std::string describeUnknown()
{
    const std::type_info* const type = abi::__cxa_current_exception_type();
    return "an exception of the type " + (type != nullptr ? demangle(type->name()) : "?");
}

} // namespace

std::string TestException::describe()
{
    if (std::current_exception() == nullptr)
        return {};
    try
    {
        throw;
    }
    catch (const ExBase& error)
    {
        return describeKnown(error);
    }
    catch (const std::exception& error)
    {
        return demangle(typeid(error).name()) + ": " + error.what();
    }
    catch (const char* text)
    {
        return "the text " + TestText::describeText(text);
    }
    catch (...)
    {
        return describeUnknown();
    }
}

bool TestException::findPosition(TestFailure& failure)
{
    try
    {
        throw;
    }
    catch (const ExBase& error)
    {
        failure.file = error.getFileName();
        failure.line = error.getLineNo();
        return true;
    }
    catch (...)
    {
        return false;
    }
}

} // namespace Kr
