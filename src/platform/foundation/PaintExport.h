#pragma once

/// Marks what the shared library shows to programs. Everything else stays hidden: it loads faster
/// and may change.
#define PAINT_API __attribute__((visibility("default")))
