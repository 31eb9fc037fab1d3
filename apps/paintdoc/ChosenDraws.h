#pragma once

#include <string>
#include <vector>

class PaintManager;

/// Makes a document show some of its draws alone, without its background colour: those that a
/// number or a title names, as `paintdoc info` shows them, also when they are hidden. Several
/// numbers may stand in one text, separated by commas. A group shows what is visible in it.
/// Answers the first text that names no draw, else nothing; the document is then of no use.
std::string showOnly(PaintManager& document, const std::vector<std::string>& names);
