#pragma once

/// Registers every class that a document's archive may name: the document, its draws, and the
/// value objects they hold. Cheap after the first call; safe to call from several threads.
void registerDocumentClasses();
