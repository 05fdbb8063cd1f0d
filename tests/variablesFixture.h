#pragma once

/// @file
/// Variables that are started by hand: a package and a command line.

#include <base/inContextAliasMgrBase.h>
#include <base/inPackageInitBase.h>
#include <base/inVariableBase.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

class Package : public Kr::InPackageInitBase
{
public:
    void addDependency(Kr::InVariableBase* variable) override { _variables.push_back(variable); }
    void removeDependency(Kr::InVariableBase* variable) override
    {
        _variables.erase(std::find(_variables.begin(), _variables.end(), variable));
    }
    void start()
    {
        for (Kr::InVariableBase* variable : _variables)
            variable->initialize();
    }
    std::size_t size() const { return _variables.size(); }

private:
    std::vector<Kr::InVariableBase*> _variables;
};

/// The command line for the time of its scope, "program" first.
class CommandLine
{
public:
    explicit CommandLine(const std::vector<std::string>& words)
    {
        append("program");
        for (const std::string& word : words)
            append(word);
    }
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;
    ~CommandLine()
    {
        Kr::InVariableBase::clearPendingOverrides();
        for (const char* word : Kr::InContextAliasMgrBase::args())
            delete[] word;
        Kr::InContextAliasMgrBase::args().clear();
    }

    static void append(const std::string& word)
    {
        char* const copy = new char[word.size() + 1];
        std::memcpy(copy, word.c_str(), word.size() + 1);
        Kr::InContextAliasMgrBase::args().push_back(copy);
    }
};
