// What packages can be tested without starting them; scenarios/packages.cpp starts them.

#include <base/inEx.h>
#include <base/inInitGuard.h>
#include <base/inPackageInit.h>
#include <base/inReinitGuard.h>
#include <base/inVariableBase.h>
#include <base/internal/init/inDependencyMatrix.h>
#include <base/internal/init/inEnvSnapshot.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using Kr::InDependencyMatrix;
using Edges = std::vector<std::vector<bool>>;

/// The closure as it is defined, entry by entry.
struct Reference
{
    explicit Reference(const Edges& edges)
        : matrix(edges)
        , added(edges.size())
        , cycle(false)
    {
        const std::size_t size = edges.size();
        for (std::size_t i = 0; i < size; ++i)
            cycle = cycle || matrix[i][i];
        for (std::size_t i = 0; i < size; ++i)
            for (std::size_t k = 0; k < size; ++k)
                for (std::size_t j = 0; k != i && matrix[k][i] && j < size; ++j)
                    if (j != i && matrix[i][j] && !matrix[k][j])
                    {
                        matrix[k][j] = true;
                        ++(k == j ? loops : added[k]);
                    }
        cycle = cycle || loops != 0;
    }

    Edges matrix;
    std::vector<std::int32_t> added;
    std::int32_t loops = 0;
    bool cycle;
};

InDependencyMatrix makeMatrix(const Edges& edges)
{
    InDependencyMatrix matrix(edges.size());
    for (std::size_t i = 0; i < edges.size(); ++i)
        for (std::size_t j = 0; j < edges.size(); ++j)
            if (edges[i][j])
                matrix.set(i, j);
    return matrix;
}

void expectClosure(const Edges& edges)
{
    const Reference expected(edges);
    InDependencyMatrix matrix = makeMatrix(edges);
    EXPECT_EQ(matrix.close(), expected.added);
    EXPECT_EQ(matrix.hasCycle(), expected.cycle);
    for (std::size_t i = 0; i < edges.size(); ++i)
        for (std::size_t j = 0; j < edges.size(); ++j)
            ASSERT_EQ(matrix.needs(i, j), expected.matrix[i][j]) << i << ", " << j;

    if (edges.empty())
        return;
    const std::size_t removed = edges.size() / 2;
    matrix.remove(removed);
    ASSERT_EQ(matrix.getSize(), edges.size() - 1);
    for (std::size_t i = 0; i < matrix.getSize(); ++i)
        for (std::size_t j = 0; j < matrix.getSize(); ++j)
            ASSERT_EQ(matrix.needs(i, j), expected.matrix[i + (i >= removed)][j + (j >= removed)])
                << i << ", " << j;
}

TEST(InDependencyMatrix, ClosesAsTheDefinitionDoesAndForgetsAnIndex)
{
    std::mt19937 random(1);
    for (const std::size_t size : {0, 1, 2, 5, 63, 64, 65, 130})
        for (const double edgesPerRow : {0.2, 0.9, 1.5, 6.})
            for (const bool acyclic : {true, false})
            {
                std::bernoulli_distribution isSet(std::min(1., edgesPerRow / double(size + 1)));
                std::vector<std::size_t> rank(size); // hides the order from the indices
                for (std::size_t i = 0; i < size; ++i)
                    rank[i] = i;
                std::shuffle(rank.begin(), rank.end(), random);
                Edges edges(size, std::vector<bool>(size));
                for (std::size_t i = 0; i < size; ++i)
                    for (std::size_t j = 0; j < size; ++j)
                        edges[i][j] = isSet(random) && (!acyclic || rank[i] > rank[j]);
                SCOPED_TRACE(testing::Message() << size << " rows, " << edgesPerRow << " each");
                expectClosure(edges);
            }
}

TEST(InEnvSnapshot, KeepsWhatStandsBeforeAndAfterTheFirstEqualsSign)
{
    const char* const block[] = {"KR_A=1",       "KR_B=x=y",   "KR_EMPTY=", "no equals sign",
                                 "=C:=C:\\here", "KR_A=2",     "kr_a=3",    "",
                                 nullptr,        "KR_BEYOND=1"};
    std::ostringstream errors;
    const Kr::InEnvSnapshot snapshot(block, errors);
    EXPECT_STREQ(snapshot.get("KR_A"), "1"); // the first, as getenv has it
    EXPECT_STREQ(snapshot.get("KR_B"), "x=y");
    EXPECT_STREQ(snapshot.get("KR_EMPTY"), "");
    EXPECT_STREQ(snapshot.get(""), "C:=C:\\here");
    EXPECT_STREQ(snapshot.get("kr_a"), "3");
    for (const char* absent : {"KR_", "KR_AB", "Kr_a", "no equals sign", "KR_BEYOND"})
        EXPECT_EQ(snapshot.get(absent), nullptr) << absent;
    EXPECT_EQ(snapshot.get(nullptr), nullptr);
    EXPECT_EQ(errors.str(), "Skipping over Environment Variable: no equals sign\n"
                            "Skipping over Environment Variable: \n");

    EXPECT_EQ(Kr::InEnvSnapshot(nullptr, errors).get("KR_A"), nullptr);
}

std::string events;

class RecordingVariable : public Kr::InVariableBase
{
public:
    explicit RecordingVariable(std::string name)
        : _name(std::move(name))
    {
    }
    void initialize() override
    {
        events += "+" + _name;
        if (raises)
            throw std::runtime_error("no value");
    }
    void finalize() override { events += "-" + _name; }
    void abandon() noexcept override { events += "!" + _name; }

    bool raises = false;

private:
    std::string _name;
};

class RecordingPackage : public Kr::InPackageInit
{
public:
    using InPackageInit::InPackageInit;
    void performInitialize() override { events += "+start"; }
    void performFinalize() override { events += "-stop"; }
    void setInitialized(bool initialized) override { events += initialized ? "(up)" : "(down)"; }
};

TEST(InPackageInit, CutsItsNameAt127Characters)
{
    EXPECT_STREQ(RecordingPackage(nullptr).getName(), "");
    EXPECT_EQ(RecordingPackage("viewer").getName(), std::string("viewer"));
    for (const std::size_t length : {126U, 127U, 128U, 200U})
        EXPECT_EQ(RecordingPackage(std::string(length, 'x').c_str()).getName(),
                  std::string(std::min<std::size_t>(length, 127), 'x'));
}

TEST(InPackageInit, StartsVariablesFirstAndStopsThemLastInReverse)
{
    events.clear();
    RecordingPackage package("viewer");
    RecordingVariable a("a");
    RecordingVariable b("b");
    RecordingVariable c("c");
    Kr::InPackageInitBase& base = package;
    for (RecordingVariable* variable : {&a, &b, &a, &c})
        base.addDependency(variable);
    base.removeDependency(&a); // the first of the two
    package.initialize();
    package.finalize();
    EXPECT_EQ(events, "+b+a+c+start(up)(down)-stop-c-a-b");

    events.clear();
    a.raises = true;
    EXPECT_THROW(package.initialize(), std::runtime_error);
    EXPECT_EQ(events, "+b+a!c!a!b"); // neither the start routine nor "(up)"
    EXPECT_THROW(base.addDependency(nullptr), Kr::ExInternalError);
}

TEST(InInitGuards, CanBeAssignedToNoEffectButNotCopied)
{
    EXPECT_TRUE(std::is_copy_assignable<Kr::InInitGuard>::value);
    EXPECT_FALSE(std::is_copy_constructible<Kr::InInitGuard>::value);
    EXPECT_TRUE(std::is_copy_assignable<Kr::InReinitGuard>::value);
    EXPECT_FALSE(std::is_copy_constructible<Kr::InReinitGuard>::value);
}

template <class Exception, class Standard, class... Names>
void expectReason(const std::string& reason, Names... names)
{
    EXPECT_TRUE((std::is_base_of<Kr::InEx, Exception>::value));
    EXPECT_TRUE((std::is_base_of<Standard, Exception>::value));
    const Exception error("src/base/file", 7, names...);
    EXPECT_EQ(error.what(), reason);
    EXPECT_EQ(error.getLineNo(), 7);
    const std::unique_ptr<Kr::ExBase> copy(error.clone());
    EXPECT_TRUE(dynamic_cast<const Exception*>(copy.get()));
    EXPECT_EQ(copy->getReason(), reason);
}

template <class Standard, class... Exceptions>
void expectBases()
{
    EXPECT_TRUE((std::is_base_of_v<Standard, Exceptions> && ...));
}

TEST(InEx, ReasonsAndStandardBases)
{
    using Kr::InEx;
    using Logic = std::logic_error;
    using Runtime = std::runtime_error;
    const std::string name(300, 'n');
    const std::string cut(256, 'n');
    const char* const n = name.c_str();
    expectReason<InEx::ExPackageNotRegistered, Runtime>(
        "Init Package not registered: '" + cut + "'.", n);
    expectReason<InEx::ExPackageNotRegistered, Runtime>("Init Package not registered: ''.",
                                                        static_cast<const char*>(nullptr));
    expectReason<InEx::ExRegAfterInit, Runtime>("Package registered after initialize().");
    expectReason<InEx::ExDoubleInit, Runtime>("Multiple calls to initialize().");
    expectReason<InEx::ExNoNewContextAliasAfterInit, Logic>(
        "Trying to do post initialization registration of context alias instance: '" + cut +
            "' (key: " + cut + ").",
        n, n);
    // The others' texts are seen where they are raised.
    expectBases<Logic, InEx::ExDependencyCycle, InEx::ExUninitializedObject, InEx::ExInvalidObject,
                InEx::ExContextAliasAlreadyDefined, InEx::ExVariableAlreadyInitialized>();
    expectBases<Runtime, InEx::ExPackageInitError, InEx::ExReinitWithoutGuard,
                InEx::ExFinaliseBeforeInit, InEx::ExDoubleFinalise, InEx::ExHandleAlreadyInUse>();
}

} // namespace
