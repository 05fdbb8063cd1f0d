#include "ownConsole.h"

// A process's streams are its own here, with or without a terminal.

OwnConsole::OwnConsole()
    : _isOurs(false)
{
}

OwnConsole::~OwnConsole() = default;
