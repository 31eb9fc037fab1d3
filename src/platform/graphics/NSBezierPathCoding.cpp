// The archived form of NSBezierPath.
#include <bit>
#include <cmath>

#include "platform/foundation/BigEndian.h"
#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSCoder.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSNumber.h"
#include "platform/graphics/NSBezierPath.h"

namespace {

constexpr const char* kSegments = "NSSegments";
constexpr const char* kLineWidth = "NSLineWidth";
constexpr const char* kCapStyle = "NSCapStyle";
constexpr const char* kJoinStyle = "NSJoinStyle";
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
    if (path.empty() || verb == PathVerb::move) {
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

/// The record's keys with `part` in their name, `key` itself first.
std::vector<std::string> keysLike(NSCoder& coder, const char* key, std::string_view part) {
  std::vector<std::string> keys;
  if (coder.containsValueForKey(key)) keys.emplace_back(key);
  for (std::string& other : coder.decodableKeys()) {
    if (other != key && other.find(part) != std::string::npos) keys.push_back(std::move(other));
  }
  return keys;
}

/// Writers do not agree on the names of styles.
template <class Style>
Style styleUnder(NSCoder& coder, const char* key, std::string_view part, Style last) {
  for (const std::string& name : keysLike(coder, key, part)) {
    if (const auto number = coder.decodeNumberForKey(name)) {
      const int64_t value = number->integerValue();
      return value < 0 || value > static_cast<int64_t>(last) ? Style{} : static_cast<Style>(value);
    }
  }
  return {};
}

/// A dash pattern as big-endian floats, or as an array of numbers.
std::vector<CGFloat> dashUnder(NSCoder& coder, const std::string& key) {
  std::vector<CGFloat> dash;
  if (const auto data = coder.decodeDataForKey(key)) {
    const auto bytes = data->bytes();
    for (size_t i = 0; i + 4 <= bytes.size(); i += 4) {
      dash.push_back(loadBigEndianFloat(&bytes[i]));
    }
  } else if (const auto array = coder.decodeObjectOfClass<NSArray>(key)) {
    for (const auto& object : *array) {
      const auto* number = dynamic_cast<const NSNumber*>(object.get());
      if (number != nullptr) dash.push_back(number->doubleValue());
    }
  }
  return dash;
}

std::vector<CGFloat> decodeDash(NSCoder& coder) {
  for (const std::string& key : keysLike(coder, kDashPatterns, "Dash")) {
    if (auto dash = dashUnder(coder, key); !dash.empty()) return dash;
  }
  return {};
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
  cap_ = styleUnder(coder, kCapStyle, "Cap", LineCap::square);
  join_ = styleUnder(coder, kJoinStyle, "Join", LineJoin::bevel);
  windingRule_ = styleUnder(coder, kWindingRule, "Winding", WindingRule::evenOdd);
  dash_ = decodeDash(coder);
  if (!dash_.empty()) dashPhase_ = doubleUnder(coder, kDashPhase, 0);
  return true;
}

void NSBezierPath::encodeWithCoder(NSCoder& coder) const {
  if (!isEmpty()) coder.encodeBytes(segments(data_), kSegments);
  if (lineWidth_ != 1) coder.encodeDouble(lineWidth_, kLineWidth);
  if (cap_ != LineCap::butt) coder.encodeInteger(static_cast<int64_t>(cap_), kCapStyle);
  if (join_ != LineJoin::miter) coder.encodeInteger(static_cast<int64_t>(join_), kJoinStyle);
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
