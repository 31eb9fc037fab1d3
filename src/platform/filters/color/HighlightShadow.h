#pragma once

#include <memory>

struct HighlightShadowTables;
struct PlanarPixels;

/// Lifts or deepens shadows and takes back highlights.
struct HighlightShadowStage {
  bool shadows;
  bool highlights;
  std::shared_ptr<const HighlightShadowTables> tables;
};

/// `shadow` from -1 to 1, 0 for none; `highlight` from 0, most, to 1, none.
HighlightShadowStage makeHighlightShadow(double shadow, double highlight);

void applyStage(const HighlightShadowStage& stage, PlanarPixels& codes);
