#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

#include "SVGArcFilter.h"
#include "svg/SVGStringParser.h"

namespace {

// Whatever the text, the path begins with a move and gets finite coordinates only.
class CheckedPath : public SVGNative::Path {
 public:
  void Reserve(size_t) override {}
  void Rect(float, float, float, float) override { std::abort(); }
  void RoundedRect(float, float, float, float, float, float) override { std::abort(); }
  void Ellipse(float, float, float, float) override { std::abort(); }
  void MoveTo(float x, float y) override {
    hasPoint_ = true;
    check({x, y});
  }
  void LineTo(float x, float y) override { check({x, y}); }
  void CurveTo(float x1, float y1, float x2, float y2, float x3, float y3) override {
    check({x1, y1, x2, y2, x3, y3});
  }
  void CurveToV(float x1, float y1, float x2, float y2) override { check({x1, y1, x2, y2}); }
  void ClosePath() override {
    check({});
    hasPoint_ = false;
  }
  void AddPath(const Path&, const SVGNative::Transform*) override { std::abort(); }
  SVGNative::Rect Bounds() const override { return {}; }

 private:
  void check(std::initializer_list<float> numbers) const {
    if (!hasPoint_) std::abort();
    for (const float number : numbers) {
      if (!std::isfinite(number)) std::abort();
    }
  }

  bool hasPoint_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  CheckedPath path;
  try {
    SVGNative::SVGStringParser::ParsePathString({reinterpret_cast<const char*>(data), size}, path);
  } catch (const UnsupportedArc&) {
    return -1;
  }
  return 0;
}
