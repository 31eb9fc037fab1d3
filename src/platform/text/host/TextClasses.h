#pragma once

/// Makes the archivable classes of this folder known to the class registry. Whoever opens archives
/// that may hold them calls it first; calling it again costs nothing, and it loads no fonts.
void registerTextClasses();
