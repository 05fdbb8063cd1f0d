#pragma once

#include <base/inPackageInit.h>

#include <memory>
#include <vector>

/// Packages in any number: they are told apart by their types, so each has one of its own.
class ManyPackages
{
public:
    static constexpr std::size_t max = 3000;

    /// Makes a package, which registers itself and needs those of the given indices.
    static std::unique_ptr<Kr::InPackageInit> make(std::size_t index,
                                                   const std::vector<std::size_t>& needed);
};
