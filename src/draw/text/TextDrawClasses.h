#pragma once

/// Registers the draw classes of this folder: text boxes and curved text.
void registerTextDrawClasses();
