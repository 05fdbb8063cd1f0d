#pragma once

/// @file
/// A package: a named unit of start-up and shut-down work that declares which packages must be up
/// before it. Programs write packages with `InInit`, which see; this is what the manager knows of
/// them.

#include <base/inPackageInitBase.h>
#include <base/vector.h>

#include <cstddef>
#include <typeinfo>

namespace Kr
{

class KR_BASE_API InPackageInit : public InPackageInitBase
{
public:
    /// What the last start took, in milliseconds.
    struct StartTimes
    {
        double variables = 0.; ///< the package's variables
        double start = 0.;     ///< its own start routine
    };

    /// @param name cut to its first 127 characters; null counts as empty
    explicit InPackageInit(const char* name);
    InPackageInit(const InPackageInit&) = delete;
    InPackageInit& operator=(const InPackageInit&) = delete;

    /// The manager forgets the package. Its stop routine does not run any more: a library that is
    /// unloaded while its packages are up has to stop them itself.
    ~InPackageInit() override;

    void addDependency(InVariableBase* variable) override;

    /// The variable must be attached.
    void removeDependency(InVariableBase* variable) override;

    virtual const char* getName() const;

    /// The package's own work at start and stop.
    virtual void performInitialize() = 0;
    virtual void performFinalize() = 0;

    /// Records whether the package is up.
    virtual void setInitialized(bool initialized) = 0;

    /// Starts the variables in the order of their attachment, then the package. What they raise
    /// passes on; the package does not count as up, and its variables are abandoned.
    void initialize();

    /// Stops the package, then its variables in reverse.
    void finalize();

    /// The types of the packages that have to be up first, in the order of their declaration;
    /// those that were up already when they were declared are not among them.
    const Vector<const std::type_info*>& getDependencies() const { return _dependencies; }

    /// The types of the packages that were up already when they were declared as needed.
    const Vector<const std::type_info*>& getMetDependencies() const { return _metDependencies; }

    const StartTimes& getStartTimes() const { return _startTimes; }

protected:
    /// Declares that the package of that type has to be up first.
    void addDependency(const std::type_info* type);

    /// Hands the package to the manager, which takes it up in its next pass. A package of a type
    /// that is up already is passed over. Raises `InEx::ExReinitWithoutGuard` after the first pass
    /// if no `InReinitGuard` is open.
    void registerPackage();

private:
    void initializeVariables();
    void reportStep(const char* operation) const;

    static constexpr std::size_t nameSize = 128; // the terminator included

    char _name[nameSize];
    Vector<const std::type_info*> _dependencies;
    Vector<const std::type_info*> _metDependencies;
    Vector<InVariableBase*> _variables;
    StartTimes _startTimes;
};

} // namespace Kr
