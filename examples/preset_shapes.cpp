// Writes a document that shows every preset shape, large and at 32 pixels, and prints where the
// names belong: lines of "x y name" with x the middle of the cell.
//
//   preset-shapes OUT.paintdoc
#include <fstream>
#include <iostream>
#include <vector>

#include "document/DocumentClasses.h"
#include "document/PaintManager.h"
#include "draw/shapes/DrawMessages.h"
#include "draw/shapes/DrawRectShape.h"
#include "draw/shapes/FixedOutlines.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/color/NSColor.h"

namespace {

constexpr CGFloat kCellWidth = 184, kCellHeight = 164, kLarge = 112, kSmall = 32;
constexpr size_t kColumns = 7;

using Shape = std::shared_ptr<DrawRectShape>;

template <class Draw>
std::shared_ptr<Draw> made() {
  auto draw = std::make_shared<Draw>();
  draw->init();
  return draw;
}

Shape polygon(int64_t points) {
  auto draw = made<DrawRectPolygon>();
  draw->setPointsCount(points);
  return draw;
}

/// All shapes, bubbles with tails for a box of that size.
std::vector<Shape> allShapes(NSSize box) {
  std::vector<Shape> shapes;
  for (const int64_t points : {3, 4, 5, 6, 8}) shapes.push_back(polygon(points));
  shapes.push_back(made<DrawRectStar>());
  const auto at = [&](CGFloat x, CGFloat y) { return NSPoint{x * box.width, y * box.height}; };
  auto message = made<DrawRectMessage>();
  message->setArrow(at(0.15, -0.3), at(0.2, 0), at(0.45, 0));
  auto bubble = made<DrawEllipseMessage>();
  bubble->setArrow(at(0.1, -0.2));
  shapes.insert(shapes.end(), {message, bubble});
  for (size_t i = 0; i < kFixedOutlineCount; ++i) {
    auto draw = std::make_shared<DrawFixedShape>(i);
    draw->init();
    shapes.push_back(std::move(draw));
  }
  return shapes;
}

bool isBubble(const DrawRectShape& shape) {
  return dynamic_cast<const DrawRectMessage*>(&shape) != nullptr ||
         dynamic_cast<const DrawEllipseMessage*>(&shape) != nullptr;
}

/// The box of a shape in a square, in its preferred aspect; bubbles leave room for their tails.
NSRect boxIn(const DrawRectShape& shape, const NSRect& square) {
  NSRect r = square;
  if (isBubble(shape)) {
    r.origin.y += r.size.height * 0.3;
    r.size.height *= 0.65;
    return r;
  }
  const CGFloat ratio = shape.width2HeightRatioForShift();
  const NSSize size{ratio < 1 ? r.size.width * ratio : r.size.width,
                    ratio < 1 ? r.size.height : r.size.height / ratio};
  return NSInsetRect(r, (r.size.width - size.width) / 2, (r.size.height - size.height) / 2);
}

void place(PaintManager& document, const Shape& shape, const NSRect& square) {
  shape->setEnableStroke(false);
  shape->setEnableFill(true);
  shape->setFillColor(NSColor::colorWithCalibratedRed(0.16, 0.32, 0.6, 1));
  shape->setBezierPathWithBounds(boxIn(*shape, square));
  document.addDraw(shape);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: preset-shapes OUT.paintdoc\n";
    return 64;
  }
  registerDocumentClasses();
  const auto large = allShapes({kLarge, kLarge * 0.65}), small = allShapes({kSmall, kSmall * 0.65});
  const size_t rows = (large.size() + kColumns - 1) / kColumns;
  const auto document =
      PaintManager::initWithSize({kColumns * kCellWidth, static_cast<CGFloat>(rows) * kCellHeight});
  document->setBackgroundColor(NSColor::whiteColor());
  for (size_t i = 0; i < large.size(); ++i) {
    const CGFloat x = static_cast<CGFloat>(i % kColumns) * kCellWidth;
    const CGFloat y = static_cast<CGFloat>(rows - 1 - i / kColumns) * kCellHeight;
    place(*document, large[i], NSMakeRect(x + 12, y + 38, kLarge, kLarge));
    place(*document, small[i], NSMakeRect(x + 12 + kLarge + 14, y + 38, kSmall, kSmall));
    std::cout << x + kCellWidth / 2 << ' ' << y + 14 << ' ' << large[i]->name() << '\n';
  }
  const auto data = document->paintDataWithResolution(0);
  std::ofstream out(argv[1], std::ios::binary);
  out.write(reinterpret_cast<const char*>(data->bytes().data()),
            static_cast<std::streamsize>(data->length()));
  return out.flush() ? 0 : 74;
}
