#include <base/inVariableBase.h>

#include <base/assert.h>
#include <base/inEx.h>
#include <base/inPackageInit.h>
#include <base/internal/init/inCommandLine.h>
#include <base/internal/init/inNamedVariable.h>
#include <base/internal/init/inVariableRegistry.h>
#include <base/raise.h>
#include <base/vector.h>

#include <algorithm>
#include <iomanip>
#include <map>
#include <ostream>

namespace Kr
{

namespace
{

using HelpLine = InNamedVariable::HelpLine;
using HelpTable = Vector<HelpLine>;

std::string getPackageName(const InNamedVariable& variable)
{
    const auto* const package = dynamic_cast<const InPackageInit*>(&variable.getPackage());
    return package != nullptr ? package->getName() : "";
}

std::map<std::string, HelpTable> collectHelp()
{
    std::map<std::string, HelpTable> help;
    for (const auto& [handle, variable] : InVariableRegistry::getInstance().getVariables())
        help[getPackageName(*variable)].push_back(variable->getHelpLine());
    return help;
}

int getWidth(const HelpTable& lines, std::string HelpLine::*column)
{
    std::size_t width = 0;
    for (const HelpLine& line : lines)
        width = std::max(width, (line.*column).size());
    return static_cast<int>(width);
}

void printTable(std::ostream& os, HelpTable lines)
{
    lines.insert(lines.begin(), {"Option", "Environment", "Default", "Meaning"});
    const int options = getWidth(lines, &HelpLine::options);
    const int environmentNames = getWidth(lines, &HelpLine::environmentNames);
    const int defaults = getWidth(lines, &HelpLine::defaultText);
    const std::ios_base::fmtflags flags = os.flags();
    for (const HelpLine& line : lines)
        os << "  " << std::left << std::setw(options) << line.options << "  "
           << std::setw(environmentNames) << line.environmentNames << "  " << std::setw(defaults)
           << line.defaultText << "  " << line.meaning << '\n';
    os.flags(flags);
}

} // namespace

InVariableBase::~InVariableBase() = default;

void InVariableBase::setOverride(const char* handle, const char* text)
{
    KR_ASSERT(handle != nullptr);
    KR_ASSERT(text != nullptr);
    InVariableRegistry& registry = InVariableRegistry::getInstance();
    const InNamedVariable* const variable = registry.find(handle);
    if (variable != nullptr && variable->isInitialized())
        raise<InEx::ExVariableAlreadyInitialized>(KR_HERE, handle);
    registry.getOverrides()[handle] = text;
}

void InVariableBase::clearPendingOverrides()
{
    InVariableRegistry::getInstance().getOverrides().clear();
    InCommandLine::getInstance().clear();
}

bool InVariableBase::isHelpRequested()
{
    return !InCommandLine::getInstance().find("--help").empty();
}

void InVariableBase::printHelp(std::ostream& os)
{
    for (const auto& [package, lines] : collectHelp())
    {
        os << "Settings of package '" << package << "':\n";
        printTable(os, lines);
    }
}

void InVariableBase::dumpAll(std::ostream& os)
{
    for (const auto& [handle, variable] : InVariableRegistry::getInstance().getVariables())
        variable->dump(os);
}

} // namespace Kr
