#pragma once

/// @file
/// Consoles and terminals that show colours.

/// Has the standard output show colours by the codes of ECMA-48; false if it leads elsewhere, or to
/// a console that cannot.
bool krEnableColours() noexcept;
