#include "manyPackages.h"

#include <string>
#include <utility>

namespace
{

class BenchPackage : public Kr::InPackageInit
{
public:
    using InPackageInit::InPackageInit;
    void performInitialize() override {}
    void performFinalize() override {}
    void setInitialized(bool /*initialized*/) override {}
    void join(const std::vector<std::size_t>& needed);
};

template <std::size_t Index>
class NumberedPackage : public BenchPackage
{
public:
    using BenchPackage::BenchPackage;
};

struct PackageType
{
    BenchPackage* (*make)(const char* name);
    const std::type_info* type;
};

template <std::size_t Index>
BenchPackage* make(const char* name)
{
    return new NumberedPackage<Index>(name);
}

template <std::size_t... Indices>
const PackageType* packageTypes(std::index_sequence<Indices...> /*indices*/)
{
    static const PackageType types[] = {{&make<Indices>, &typeid(NumberedPackage<Indices>)}...};
    return types;
}

const PackageType* const types = packageTypes(std::make_index_sequence<ManyPackages::max>());

void BenchPackage::join(const std::vector<std::size_t>& needed)
{
    registerPackage();
    for (const std::size_t index : needed)
        InPackageInit::addDependency(types[index].type);
}

} // namespace

std::unique_ptr<Kr::InPackageInit> ManyPackages::make(std::size_t index,
                                                      const std::vector<std::size_t>& needed)
{
    std::unique_ptr<BenchPackage> package(
        types[index].make(("package" + std::to_string(index)).c_str()));
    package->join(needed);
    return package;
}
