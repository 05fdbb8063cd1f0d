#pragma once

/// What the child of the tests does that is the system's own; the build picks the half.
namespace ProcessChild
{

/// Goes on when it is asked to end.
void ignoreEnd();

/// From now on the process hears that it is asked to end, as the system's programs do: by a signal,
/// by its window.
void listenForEnd();
/// Returns when it has been asked.
void awaitEnd();

} // namespace ProcessChild
