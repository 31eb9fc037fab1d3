#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Absolute path of a file kept in the source tree, from its path relative to the project root.
std::string sourcePath(const std::string& relative);

/// Whole contents of a file; fails the running test and returns nothing when it cannot be read.
std::vector<uint8_t> readFile(const std::string& path);
