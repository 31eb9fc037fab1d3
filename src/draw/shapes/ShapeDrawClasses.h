#pragma once

/// Registers the draw classes of this folder: shapes, lines and selections that are shapes.
void registerShapeDrawClasses();
