#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "svg/SVGStringParser.h"
#include "svg/parse/RecordingPath.h"

using namespace SVGNative::SVGStringParser;

namespace {

struct PathCase {
  std::string_view data;
  std::string_view calls;
  bool valid = true;
};

void PrintTo(const PathCase& c, std::ostream* out) {
  *out << testing::PrintToString(c.data);
}

class PathTest : public testing::TestWithParam<PathCase> {};

TEST_P(PathTest, Parses) {
  RecordingPath path;
  EXPECT_EQ(ParsePathString(GetParam().data, path), GetParam().valid);
  EXPECT_EQ(path.text(), GetParam().calls);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, PathTest,
    testing::Values(PathCase{"", ""}, PathCase{"  ", ""}, PathCase{"M 1,2", "M 1 2"},
                    PathCase{"M1 2L3 4l1-1", "M 1 2 L 3 4 L 4 3"},
                    PathCase{"M1,2 3,4 5,6", "M 1 2 L 3 4 L 5 6"},
                    PathCase{"m1,2 3,4 5,6", "M 1 2 L 4 6 L 9 12"},
                    PathCase{"M1 1H5 6h-2V7v.5", "M 1 1 L 5 1 L 6 1 L 4 1 L 4 7 L 4 7.5"},
                    PathCase{"M0 0C1 2 3 4 5 6c1 2 3 4 5 6",
                             "M 0 0 C 1 2 3 4 5 6 C 6 8 8 10 10 12"},
                    PathCase{"M0 0Q1 2 3 4q1 2 3 4", "M 0 0 Q 1 2 3 4 Q 4 6 6 8"},
                    PathCase{"M0 0L1 1L2 0Zl5 5", "M 0 0 L 1 1 L 2 0 Z M 0 0 L 5 5"},
                    PathCase{"M2 2L4 4zm1 1L9 9Z", "M 2 2 L 4 4 Z M 3 3 L 9 9 Z"},
                    PathCase{"M2 2L4 4zz", "M 2 2 L 4 4 Z"},
                    PathCase{"M1 1 2 2 M3 3 4 4", "M 1 1 L 2 2 M 3 3 L 4 4"},
                    PathCase{"\tM\n1\r1 L 2 , 2 ", "M 1 1 L 2 2"},
                    PathCase{"M.5.5-1-1", "M 0.5 0.5 L -1 -1"}, PathCase{"M1e1-1e1", "M 10 -10"}));

INSTANTIATE_TEST_SUITE_P(
    SmoothCurves, PathTest,
    testing::Values(
        // The first control point mirrors the second one of the cubic before.
        PathCase{"M0 0C0 1 2 3 4 4S8 9 9 9", "M 0 0 C 0 1 2 3 4 4 C 6 5 8 9 9 9"},
        PathCase{"M0 0C0 1 2 3 4 4s4 5 5 5 1 1 2 2",
                 "M 0 0 C 0 1 2 3 4 4 C 6 5 8 9 9 9 C 10 9 10 10 11 11"},
        // Without a cubic before it is the current point.
        PathCase{"M1 1S2 3 4 5", "M 1 1 C 1 1 2 3 4 5"},
        PathCase{"M0 0Q1 1 2 2S3 4 5 6", "M 0 0 Q 1 1 2 2 C 2 2 3 4 5 6"},
        PathCase{"M0 0Q1 2 4 4T8 8t4 0", "M 0 0 Q 1 2 4 4 Q 7 6 8 8 Q 9 10 12 8"},
        PathCase{"M1 1T3 3", "M 1 1 Q 1 1 3 3"},
        PathCase{"M0 0C0 1 2 3 4 4T9 9", "M 0 0 C 0 1 2 3 4 4 Q 4 4 9 9"},
        PathCase{"M0 0C0 1 2 3 4 4L5 5S8 9 9 9", "M 0 0 C 0 1 2 3 4 4 L 5 5 C 5 5 8 9 9 9"}));

INSTANTIATE_TEST_SUITE_P(
    Errors, PathTest,
    testing::Values(
        // What stands before the error is kept.
        PathCase{"L1 1", "", false}, PathCase{"1 1", "", false}, PathCase{"Z", "", false},
        PathCase{"M", "", false}, PathCase{"M1", "", false}, PathCase{"M,1 1", "", false},
        PathCase{"M1 1L2", "M 1 1", false}, PathCase{"M1 1L2 2 3", "M 1 1 L 2 2", false},
        PathCase{"M1 1L2 2,", "M 1 1 L 2 2", false}, PathCase{"M1 1,,2 2", "M 1 1", false},
        PathCase{"M1 1,L2 2", "M 1 1", false}, PathCase{"M1 1L2 2X3 3", "M 1 1 L 2 2", false},
        PathCase{"M1 1[2 2", "M 1 1", false}, PathCase{"M1 1L2 2Z3 3", "M 1 1 L 2 2 Z", false},
        PathCase{"M1 1C1 2 3 4 5", "M 1 1", false}, PathCase{"M1 1L2 2em", "M 1 1", false},
        PathCase{"M1 1A5 5 0 2 0 3 3", "M 1 1", false},
        PathCase{"M1 1A5 5 0 1 3 3", "M 1 1", false},
        // No coordinate leaves the range of single precision.
        PathCase{"M3e38 0l3e38 0", "M 3e+38 0", false},
        PathCase{"M3e38 0h3e38", "M 3e+38 0", false},
        PathCase{"M0 0C0 0-3e38 0 3e38 0S1 1 2 2", "M 0 0 C 0 0 -3e+38 0 3e+38 0", false}));

TEST(PathTest, ArcArgumentsMayTouch) {
  for (const char* data :
       {"M0 0A5 5 0 0 1 10 0", "M0 0a5 5 0 0110 0", "M0 0a5,5,0,0,1,10,0", "M0 0a5 5 0 01 10 0"}) {
    RecordingPath path;
    EXPECT_TRUE(ParsePathString(data, path)) << data;
    // A half circle is cut into two pieces, the first a third of a circle.
    const std::string calls = path.text();
    EXPECT_EQ(calls.substr(0, 8), "M 0 0 C ") << data;
    EXPECT_TRUE(calls.ends_with(" 10 0")) << calls;
    EXPECT_EQ(std::count(calls.begin(), calls.end(), 'C'), 2) << calls;
  }
}

TEST(PathTest, ArcRepetitionsGoOnFromTheEndPoint) {
  RecordingPath path;
  EXPECT_TRUE(ParsePathString("M1 1a0 0 0 0 0 2 2 0 0 0 0 0 3 3L0 0", path));
  EXPECT_EQ(path.text(), "M 1 1 L 3 3 L 6 6 L 0 0");
}

TEST(PathTest, CommandLetters) {
  for (int c = -128; c < 128; ++c) {
    const char letter = static_cast<char>(c);
    EXPECT_EQ(IsMoveCmd(letter), letter == 'M' || letter == 'm');
    EXPECT_EQ(IsCloseCmd(letter), letter == 'Z' || letter == 'z');
  }
}

}  // namespace
