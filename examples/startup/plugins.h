#pragma once

/// Registers two packages that need each other, as two libraries loaded at run time might. Raises
/// `Kr::InEx::ExDependencyCycle`.
void loadPlugins();
