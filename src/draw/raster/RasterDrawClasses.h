#pragma once

/// Registers the draw classes of this folder: brush strokes, fills, clears and selections, and
/// the masks that fills keep.
void registerRasterDrawClasses();
