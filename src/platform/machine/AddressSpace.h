#pragma once

#include <cstddef>

/// Whether that many bytes more can be mapped. Libraries that answer "not there" for want of memory
/// are told by it from those whose files are missing or broken.
bool hasAddressSpace(size_t bytes);
