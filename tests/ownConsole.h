#pragma once

/// A console for the tests while it lives, where they have none, as in a Wine without a terminal:
/// there each child without a console is given a helper, which holds the child's streams.
class OwnConsole
{
public:
    OwnConsole();
    OwnConsole(const OwnConsole&) = delete;
    OwnConsole& operator=(const OwnConsole&) = delete;
    ~OwnConsole();

private:
    void exchangeStreams();

    bool _isOurs;
    void* _others[3] = {}; ///< the streams that are not set now: the tests' own or the console's
};
