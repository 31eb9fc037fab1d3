#pragma once

#include <string>

#include "document/PaintManager.h"

/// What `paintdoc info` tells of a document. The resolution is 0 when the file holds none.
struct DocumentFacts {
  PaintManager& document;  ///< its pictures are read and drawn
  PaintDataFacts file;
  double resolution = 0;
};

/// One line per fact, then the tree of draws, topmost last.
std::string infoText(const DocumentFacts& facts);
std::string infoJson(const DocumentFacts& facts);
