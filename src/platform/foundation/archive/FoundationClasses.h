#pragma once

/// Makes the archivable classes of this folder known to the class registry. Unarchivers call it
/// themselves; calling it again costs nothing.
void registerFoundationClasses();
