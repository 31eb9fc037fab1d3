#pragma once

#include <memory>
#include <random>
#include <string>

#include "document/PaintManager.h"

/// Draws of all kinds of shapes, lines, strokes and pictures with attributes by chance, somewhere
/// on a square canvas or across its edges. The same ones for the same seed.
class RandomDraws {
 public:
  /// Lengths are in so many canvas units, so the same seed gives the same picture in any size.
  RandomDraws(unsigned seed, double side, double unit = 1)
      : random_(seed), side_(side), unit_(unit) {}

  std::shared_ptr<DrawBase> next();
  /// Also texts, fills, filters and groups.
  std::shared_ptr<DrawBase> nextOfAll();
  /// What the last draw is, for messages.
  const std::string& description() const { return description_; }

  unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }
  bool oneIn(unsigned n) { return below(n) == 0; }

 private:
  double at() { return (below(1000) / 1000.0 * (side_ + 20) - 10) * unit_; }
  NSRect bounds();
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
  std::shared_ptr<DrawBase> text();
  std::shared_ptr<DrawBase> curvedText();
  std::shared_ptr<DrawBase> fill();
  std::shared_ptr<DrawBase> filter();
  std::shared_ptr<DrawBase> group();
  void describe(const DrawBase& draw);
  void addPaint(DrawBase& draw);
  void addEffects(DrawBase& draw);

  std::minstd_rand random_;
  double side_;
  double unit_;
  std::string description_;
};

/// A document of up to five draws of all kinds, of about that size. The same picture in every size.
std::shared_ptr<PaintManager> randomDocument(unsigned seed, double megapixels);
