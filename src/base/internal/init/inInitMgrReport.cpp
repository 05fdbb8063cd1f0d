// What the initialisation manager tells of itself.

#include <base/inInitMgr.h>

#include <base/internal/errors/demangle.h>
#include <base/internal/init/inInitState.h>
#include <base/internal/init/inReport.h>

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string>
#include <unordered_set>

namespace Kr
{

namespace
{

template <class Entries>
void writeEntries(std::ostream& stream, const Entries& entries, const char* none, const char* some)
{
    if (entries.empty())
    {
        stream << none << '\n';
        return;
    }
    stream << entries.size() << some << '\n';
    for (const auto& entry : entries)
    {
        stream << "\t'" << entry.package->getName() << "' ";
        if (entry.initialized)
            stream << "Initialized (" << entry._nbDependencies << " dependencies)";
        else
            stream << "Not initialized";
        stream << '\n';
    }
}

} // namespace

std::ostream& InInitMgr::reportCycles(std::ostream& stream) const
{
    InReport report;
    if (_state->_cycle)
        _state->writeCycles(report);
    else
        report << "No dependency cycles to report.\n";
    return report.writeTo(stream);
}

std::ostream& InInitMgr::dump(std::ostream& stream) const
{
    InReport report;
    writeEntries(report, _state->_packagesToInit, "No packages waiting to be initialize.",
                 " packages waiting to be initialize:");
    writeEntries(report, _state->_savedPackages, "No packages saved.",
                 " packages currently saved:");
    if (_state->_cycle)
    {
        report << "Dependency cycle(s) detected...\n";
        _state->writeCycles(report);
    }
    return report.writeTo(stream);
}

/// A member is on purpose neither asked whether it needs the group's first package back nor passed
/// over when an earlier group has listed it: it moves to the later group.
void InInitState::writeCycles(std::ostream& stream) const
{
    const std::size_t size = std::min(_packagesToInit.size(), _dependencyMatrix.getSize());
    std::vector<std::int32_t> groups(size, -1);
    std::int32_t group = 0;
    for (std::size_t i = 0; i < size; ++i)
    {
        if (groups[i] != -1 || !_dependencyMatrix.needs(i, i))
            continue;
        groups[i] = group;
        stream << "'" << _packagesToInit[i].package->getName() << "' is in a cycle with:\n";
        for (std::size_t j = i + 1; j < size; ++j)
        {
            if (!_dependencyMatrix.needs(i, j) || !_dependencyMatrix.needs(j, j))
                continue;
            groups[j] = group;
            stream << "\t'" << _packagesToInit[j].package->getName() << "'\n";
        }
        ++group;
    }
}

// The start times

namespace
{

constexpr int numberWidth = 14;

void writeTimes(std::ostream& text, double variables, double start)
{
    text << std::setw(numberWidth) << variables << std::setw(numberWidth) << start;
}

} // namespace

std::ostream& InInitMgr::reportStart(std::ostream& stream) const
{
    std::size_t nameWidth = std::string("package").size();
    for (const InInitState::StartRecord& record : _state->_startRecords)
        nameWidth = std::max(nameWidth, record.name.size());

    InReport text;
    text << std::fixed << std::setprecision(3);
    const auto writeName = [&](const std::string& name)
    { text << std::left << std::setw(static_cast<int>(nameWidth)) << name << std::right; };

    writeName("package");
    text << std::setw(numberWidth) << "dependencies" << std::setw(numberWidth) << "variables ms"
         << std::setw(numberWidth) << "start ms" << '\n';
    InPackageInit::StartTimes total;
    for (const InInitState::StartRecord& record : _state->_startRecords)
    {
        writeName(record.name);
        text << std::setw(numberWidth) << record.nbDependencies;
        writeTimes(text, record.times.variables, record.times.start);
        text << (record.failed ? "  failed\n" : "\n");
        total.variables += record.times.variables;
        total.start += record.times.start;
    }
    writeName("total");
    text << std::setw(numberWidth) << "";
    writeTimes(text, total.variables, total.start);
    text << '\n';
    return text.writeTo(stream);
}

// The graph

namespace
{

/// The packages that are known, each once, with what they need.
class PackageGraph
{
public:
    void addNode(const InPackageInit& package, bool isUp);
    void addEdges();
    void write(std::ostream& stream);

private:
    struct Node
    {
        const InPackageInit* package;
        bool isUp;
    };

    void addEdges(std::size_t from, const Vector<const std::type_info*>& types);
    void writeNode(std::ostream& stream, std::size_t index,
                   const InDependencyMatrix& closure) const;

    std::vector<Node> _nodes;
    std::unordered_set<const InPackageInit*> _known;
    std::unordered_map<std::type_index, std::size_t> _indices;
    std::vector<const char*> _unregistered; ///< the type names that follow the nodes
    std::vector<std::pair<std::size_t, std::size_t>> _edges;
};

/// A quoted string of the graph language.
std::string quote(const std::string& text)
{
    std::string quoted(1, '"');
    for (const char c : text)
    {
        if (c == '"' || c == '\\')
            quoted += '\\';
        if (c == '\n')
            quoted += "\\n";
        else if (c == '&')
            quoted += "&amp;"; // the language knows entities inside its strings
        else
            quoted += c;
    }
    return quoted + '"';
}

void PackageGraph::addNode(const InPackageInit& package, bool isUp)
{
    if (!_known.insert(&package).second)
        return;
    _indices.emplace(typeid(package), _nodes.size());
    _nodes.push_back({&package, isUp});
}

void PackageGraph::addEdges()
{
    for (std::size_t i = 0; i < _nodes.size(); ++i)
    {
        addEdges(i, _nodes[i].package->getMetDependencies());
        addEdges(i, _nodes[i].package->getDependencies());
    }
}

void PackageGraph::addEdges(std::size_t from, const Vector<const std::type_info*>& types)
{
    for (const std::type_info* type : types)
    {
        const auto [found, isNew] = _indices.emplace(*type, _nodes.size() + _unregistered.size());
        if (isNew)
            _unregistered.push_back(type->name());
        _edges.emplace_back(from, found->second);
    }
}

void PackageGraph::write(std::ostream& stream)
{
    InDependencyMatrix closure(_nodes.size() + _unregistered.size());
    for (const auto& [from, to] : _edges)
        closure.set(from, to);
    closure.close();

    InReport text;
    text << "digraph packages\n{\n    node [shape=box];\n";
    for (std::size_t i = 0; i < closure.getSize(); ++i)
        writeNode(text, i, closure);
    for (const auto& [from, to] : _edges)
        text << "    p" << from << " -> p" << to
             << (closure.needs(to, from) ? " [color=red];\n" : ";\n");
    text << "}\n";
    text.writeTo(stream);
}

void PackageGraph::writeNode(std::ostream& stream, std::size_t index,
                             const InDependencyMatrix& closure) const
{
    const bool isRegistered = index < _nodes.size();
    stream << "    p" << index << " [label="
           << quote(isRegistered ? _nodes[index].package->getName()
                                 : demangle(_unregistered[index - _nodes.size()]));
    if (!isRegistered)
        stream << ", style=dashed";
    else if (_nodes[index].isUp)
        stream << ", style=filled";
    if (closure.needs(index, index))
        stream << ", color=red";
    stream << "];\n";
}

} // namespace

std::ostream& InInitMgr::writeGraph(std::ostream& stream) const
{
    PackageGraph graph;
    for (const InInitState::SavedEntry& entry : _state->_savedPackages)
        graph.addNode(*entry.package, entry.initialized);
    for (const InInitState::PackageEntry& entry : _state->_packagesToInit)
        graph.addNode(*entry.package, false);
    // New packages stand in the order of static initialisation, which is the linker's choice.
    InInitState::Entries newPackages = _state->_newPackages;
    std::sort(newPackages.begin(), newPackages.end(), &InInitState::nameBefore);
    for (const InInitState::PackageEntry& entry : newPackages)
        graph.addNode(*entry.package, false);
    graph.addEdges();
    graph.write(stream);
    return stream;
}

} // namespace Kr
