#include <gtest/gtest.h>

#include <numbers>

#include "svg/SVGStringParser.h"
#include "svg/parse/RecordingPath.h"

using namespace SVGNative::SVGStringParser;

namespace {

struct TransformCase {
  std::string_view text;
  RecordingTransform::Matrix matrix;
};

void PrintTo(const TransformCase& c, std::ostream* out) {
  *out << testing::PrintToString(c.text);
}

class TransformTest : public testing::TestWithParam<TransformCase> {};

TEST_P(TransformTest, Applies) {
  RecordingTransform transform;
  ASSERT_TRUE(ParseTransform(GetParam().text, transform));
  for (size_t i = 0; i < 6; ++i) {
    EXPECT_NEAR(transform.matrix()[i], GetParam().matrix[i], 1e-5) << i;
  }
}

const double kTan30 = 1.0 / std::numbers::sqrt3;

INSTANTIATE_TEST_SUITE_P(
    Texts, TransformTest,
    testing::Values(TransformCase{"", {1, 0, 0, 1, 0, 0}}, TransformCase{"  ", {1, 0, 0, 1, 0, 0}},
                    TransformCase{"matrix(1 2 3 4 5 6)", {1, 2, 3, 4, 5, 6}},
                    TransformCase{"matrix(1-2-3.5.5,5 6)", {1, -2, -3.5, 0.5, 5, 6}},
                    TransformCase{" translate ( 7 ) ", {1, 0, 0, 1, 7, 0}},
                    TransformCase{"translate(7,-8)", {1, 0, 0, 1, 7, -8}},
                    TransformCase{"scale(3)", {3, 0, 0, 3, 0, 0}},
                    TransformCase{"scale(3 4)", {3, 0, 0, 4, 0, 0}},
                    TransformCase{"rotate(90)", {0, 1, -1, 0, 0, 0}},
                    // (10, 20) stays where it is; (11, 20) turns to (10, 21).
                    TransformCase{"rotate(90 10 20)", {0, 1, -1, 0, 30, 10}},
                    TransformCase{"skewX(30)", {1, 0, kTan30, 1, 0, 0}},
                    TransformCase{"skewY(30)", {1, kTan30, 0, 1, 0, 0}},
                    // The last function acts first.
                    TransformCase{"translate(10,0)scale(2)", {2, 0, 0, 2, 10, 0}},
                    TransformCase{"scale(2) , translate(10 0)", {2, 0, 0, 2, 20, 0}},
                    TransformCase{"scale(2),,scale(3)", {6, 0, 0, 6, 0, 0}}));

TEST(TransformTest, InvalidTexts) {
  for (const char* text : {"rotate(1 2)",
                           "rotate()",
                           "matrix(1 2 3 4 5)",
                           "matrix(1 2 3 4 5 6 7)",
                           "translate(1 2 3)",
                           "scale(1,2,3)",
                           "skewX(1 2)",
                           "skewY()",
                           "scale(2",
                           "scale 2)",
                           "scale",
                           "Scale(2)",
                           "skewx(2)",
                           "scale(2,)",
                           "scale(,2)",
                           "scale(2)x",
                           "scale(2),",
                           "translate(1px 2)",
                           "scale(1e999)",
                           "none",
                           "rotate(1 2 3 4)"}) {
    RecordingTransform transform;
    EXPECT_FALSE(ParseTransform(text, transform)) << text;
  }
}

}  // namespace
