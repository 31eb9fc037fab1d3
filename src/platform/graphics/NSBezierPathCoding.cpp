// The archived form of NSBezierPath.
#include <bit>
#include <cmath>

#include "platform/foundation/BigEndian.h"
#include "platform/foundation/NSCoder.h"
#include "platform/graphics/NSBezierPath.h"

namespace {

constexpr const char* kSegments = "NSSegments";
constexpr const char* kLineWidth = "NSLineWidth";
constexpr const char* kFlatness = "NSFlatness";
constexpr const char* kMiterLimit = "NSMiterLimit";
constexpr const char* kWindingRule = "NSWindingRule";
constexpr const char* kDashPatterns = "NSDashPatterns";
constexpr const char* kDashPhase = "NSDashPhase";
constexpr CGFloat kDefaultFlatness = 0.6;

/// Kind (1 byte) and a point of two big-endian floats.
constexpr size_t kRecordSize = 9;

NSPoint recordPoint(const uint8_t* record) {
  return {loadBigEndianFloat(record + 1), loadBigEndianFloat(record + 5)};
}

void appendRecord(std::vector<uint8_t>& out, PathVerb verb, NSPoint p) {
  out.push_back(static_cast<uint8_t>(verb));
  for (CGFloat v : {p.x, p.y}) {
    appendBigEndian(out, std::bit_cast<uint32_t>(static_cast<float>(v)), 4);
  }
}

/// Records an element takes: curves have one for each of their points.
size_t recordCount(PathVerb verb) {
  return verb == PathVerb::close ? 1 : static_cast<size_t>(pointCount(verb));
}

/// Keeps what can be read: stops at a short tail, an unknown kind or an incomplete curve. A
/// drawing element before any move starts the path at its end point.
PathData parseSegments(std::span<const uint8_t> bytes) {
  PathData path;
  const size_t count = bytes.size() / kRecordSize;
  path.verbs.reserve(count);
  path.points.reserve(count);
  for (size_t i = 0; i < count;) {
    const uint8_t* record = bytes.data() + i * kRecordSize;
    if (record[0] > static_cast<uint8_t>(PathVerb::quad)) break;
    const auto verb = static_cast<PathVerb>(record[0]);
    const size_t records = recordCount(verb);
    if (i + records > count) break;
    for (size_t k = 1; k < records; ++k) {
      if (record[k * kRecordSize] != record[0]) return path;
    }
    i += records;
    const NSPoint last = recordPoint(record + (records - 1) * kRecordSize);
    if (path.empty()) {
      path.move(last);
    } else if (verb == PathVerb::move) {
      path.move(last);
    } else if (verb == PathVerb::line) {
      path.line(last);
    } else if (verb == PathVerb::cubic) {
      path.cubic(recordPoint(record), recordPoint(record + kRecordSize), last);
    } else if (verb == PathVerb::quad) {
      // Exact as a cubic (degree elevation), so that every reader of elements knows its kind.
      const NSPoint q = recordPoint(record);
      const NSPoint p = path.points.back();
      path.cubic({p.x + 2.0 / 3 * (q.x - p.x), p.y + 2.0 / 3 * (q.y - p.y)},
                 {last.x + 2.0 / 3 * (q.x - last.x), last.y + 2.0 / 3 * (q.y - last.y)}, last);
    } else {
      path.close();
    }
  }
  return path;
}

std::vector<uint8_t> segments(const PathData& path) {
  std::vector<uint8_t> bytes;
  bytes.reserve(path.verbs.size() * kRecordSize);
  const NSPoint* p = path.points.data();
  NSPoint start;
  for (const PathVerb verb : path.verbs) {
    if (verb == PathVerb::move) start = p[0];
    if (verb == PathVerb::close) appendRecord(bytes, verb, start);
    for (int k = 0; k < pointCount(verb); ++k) appendRecord(bytes, verb, p[k]);
    p += pointCount(verb);
  }
  return bytes;
}

/// Some writers spell the cap and join keys with "Line".
int64_t integerUnder(NSCoder& coder, const char* key, const char* otherKey, int64_t limit) {
  const char* name = coder.containsValueForKey(key) ? key : otherKey;
  const int64_t value = coder.decodeIntegerForKey(name);
  return value < 0 || value > limit ? 0 : value;
}

CGFloat doubleUnder(NSCoder& coder, const char* key, CGFloat absent) {
  return coder.containsValueForKey(key) ? coder.decodeDoubleForKey(key) : absent;
}

}  // namespace

bool NSBezierPath::initWithCoder(NSCoder& coder) {
  if (coder.containsValueForKey(kSegments))
    data_ = parseSegments(coder.decodeBytesForKey(kSegments));
  reindex();
  lineWidth_ = doubleUnder(coder, kLineWidth, 1);
  flatness_ = doubleUnder(coder, kFlatness, kDefaultFlatness);
  // Old writers widened a float 0.6.
  if (std::fabs(flatness_ - kDefaultFlatness) < 1e-6) flatness_ = kDefaultFlatness;
  miterLimit_ = doubleUnder(coder, kMiterLimit, 10);
  cap_ = static_cast<LineCap>(integerUnder(coder, "NSCapStyle", "NSLineCapStyle", 2));
  join_ = static_cast<LineJoin>(integerUnder(coder, "NSJoinStyle", "NSLineJoinStyle", 2));
  windingRule_ = static_cast<WindingRule>(integerUnder(coder, kWindingRule, kWindingRule, 1));
  if (coder.containsValueForKey(kDashPatterns)) {
    const auto bytes = coder.decodeBytesForKey(kDashPatterns);
    for (size_t i = 0; i + 4 <= bytes.size(); i += 4) {
      dash_.push_back(loadBigEndianFloat(&bytes[i]));
    }
    dashPhase_ = doubleUnder(coder, kDashPhase, 0);
  }
  return true;
}

void NSBezierPath::encodeWithCoder(NSCoder& coder) const {
  if (!isEmpty()) coder.encodeBytes(segments(data_), kSegments);
  if (lineWidth_ != 1) coder.encodeDouble(lineWidth_, kLineWidth);
  if (cap_ != LineCap::butt) coder.encodeInteger(static_cast<int64_t>(cap_), "NSCapStyle");
  if (join_ != LineJoin::miter) coder.encodeInteger(static_cast<int64_t>(join_), "NSJoinStyle");
  if (miterLimit_ != 10) coder.encodeDouble(miterLimit_, kMiterLimit);
  if (flatness_ != kDefaultFlatness) coder.encodeDouble(flatness_, kFlatness);
  if (windingRule_ != WindingRule::nonZero) {
    coder.encodeInteger(static_cast<int64_t>(windingRule_), kWindingRule);
  }
  if (!dash_.empty()) {
    std::vector<uint8_t> bytes;
    for (CGFloat v : dash_) {
      appendBigEndian(bytes, std::bit_cast<uint32_t>(static_cast<float>(v)), 4);
    }
    coder.encodeBytes(bytes, kDashPatterns);
    coder.encodeDouble(dashPhase_, kDashPhase);
  }
}
