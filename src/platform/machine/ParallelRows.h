#pragma once

#include <cstdint>
#include <functional>

/// Splits rows [0, count) into a few consecutive parts and calls work(first, end) for each, on
/// threads of their own where the system grants them; returns when all are done. The work must not
/// throw. Starting a thread costs some ten microseconds, and milliseconds on a busy machine: only
/// for loops that take longer.
void inParallel(int64_t count, const std::function<void(int64_t first, int64_t end)>& work);
