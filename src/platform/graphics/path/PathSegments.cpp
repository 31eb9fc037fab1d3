#include "platform/graphics/path/PathSegments.h"

#include <bit>

#include "platform/foundation/BigEndian.h"

namespace {

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

}  // namespace

PathData pathFromSegments(std::span<const uint8_t> bytes) {
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

std::vector<uint8_t> segmentsOfPath(const PathData& path) {
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
