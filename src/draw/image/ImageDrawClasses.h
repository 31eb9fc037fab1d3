#pragma once

/// Registers the draw classes of this folder: pictures and filters.
void registerImageDrawClasses();
