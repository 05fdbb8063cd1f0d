#pragma once

/// @file
/// A library of a user's, with an exception and a singleton of its own.

#include <base/inSingleton.h>

#include <other_library_export.h>

namespace Other
{

class OTHER_LIBRARY_EXPORT ExOther : public Kr::ExConcrete<ExOther, std::logic_error, Kr::ExBase>
{
public:
    ExOther(const char* file, int line);
};

class OTHER_LIBRARY_EXPORT Service;

} // namespace Other

extern template class OTHER_LIBRARY_EXPORT Kr::InSingleton<Other::Service>;

namespace Other
{

class OTHER_LIBRARY_EXPORT Service
{
public:
    static Service& getInstance() { return *Kr::InSingleton<Service>::getInstance(); }
    virtual ~Service() = default;
};

OTHER_LIBRARY_EXPORT void raiseOther();
OTHER_LIBRARY_EXPORT Service* getServiceInLibrary();

} // namespace Other
