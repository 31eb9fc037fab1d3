#pragma once

class DrawingRecord;

/// Paints a record into the current context: the pixels that painting it directly would give, at
/// the scale of that context. Nothing without a context; throws std::bad_alloc.
void playRecord(const DrawingRecord& record);
