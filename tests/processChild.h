#pragma once

/// What the child of the tests does that is the system's own; the build picks the half.
namespace ProcessChild
{

/// Goes on when it is asked to end.
void ignoreEnd();

} // namespace ProcessChild
