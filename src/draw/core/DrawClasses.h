#pragma once

/// Registers every class that an archive of draws may name, so that it can be read. Defined above
/// the draws' families, which know nothing of each other. Cheap after the first call; safe to call
/// from several threads.
void registerDrawClasses();
