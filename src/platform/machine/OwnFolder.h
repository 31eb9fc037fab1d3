#pragma once

#include <string>

/// Folder of the file that this code was loaded from, a shared library or the running program, with
/// a slash at its end; empty when the system does not tell.
std::string ownFolder();
