#pragma once

#include <memory>
#include <random>
#include <string>

#include "draw/core/DrawBase.h"

/// Draws of all kinds of shapes, lines, strokes and pictures with attributes by chance, somewhere
/// on a square canvas or across its edges. The same ones for the same seed.
class RandomDraws {
 public:
  RandomDraws(unsigned seed, double side) : random_(seed), side_(side) {}

  std::shared_ptr<DrawBase> next();
  /// What the last draw is, for messages.
  const std::string& description() const { return description_; }

  unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }
  bool oneIn(unsigned n) { return below(n) == 0; }

 private:
  double at() { return below(1000) / 1000.0 * (side_ + 20) - 10; }
  NSPoint point() {
    const double x = at();
    return {x, at()};
  }
  std::shared_ptr<NSColor> color();
  std::shared_ptr<NSGradient> gradient();
  std::shared_ptr<NSShadow> shadow();
  std::shared_ptr<DrawBase> box();
  std::shared_ptr<DrawBase> polyline();
  std::shared_ptr<DrawBase> spray();
  std::shared_ptr<DrawBase> picture();
  std::shared_ptr<DrawBase> clearedArea();
  void addPaint(DrawBase& draw);
  void addEffects(DrawBase& draw);

  std::minstd_rand random_;
  double side_;
  std::string description_;
};
