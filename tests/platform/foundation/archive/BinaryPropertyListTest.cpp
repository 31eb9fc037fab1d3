#include <gtest/gtest.h>

#include <cmath>

#include "platform/foundation/BigEndian.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/BinaryPropertyList.h"
#include "platform/foundation/archive/BinaryPropertyListWriter.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "support/Archives.h"

namespace {

using Kind = PropertyListObject::Kind;
using Bytes = std::vector<uint8_t>;

/// A file put together by hand, so that any number in it can be wrong.
struct File {
  /// The object area; offsets point into it, counted from the beginning of the file.
  Bytes objects{0x09};
  std::vector<uint64_t> offsets{8};
  uint8_t offsetSize = 1;
  uint8_t refSize = 1;
  std::optional<uint64_t> count = std::nullopt;
  uint64_t top = 0;
  std::optional<uint64_t> table = std::nullopt;
  std::string magic = "bplist00";
  Bytes appended = {};

  Bytes bytes() const {
    Bytes out(magic.begin(), magic.end());
    out.insert(out.end(), objects.begin(), objects.end());
    const uint64_t tableStart = out.size();
    for (const uint64_t offset : offsets) {
      for (int i = offsetSize - 1; i >= 0; --i) {
        out.push_back(static_cast<uint8_t>(i < 8 ? offset >> (8 * i) : 0));
      }
    }
    out.insert(out.end(), 6, 0);
    out.push_back(offsetSize);
    out.push_back(refSize);
    appendBigEndian(out, count.value_or(offsets.size()), 8);
    appendBigEndian(out, top, 8);
    appendBigEndian(out, table.value_or(tableStart), 8);
    out.insert(out.end(), appended.begin(), appended.end());
    return out;
  }
};

/// The only object of a file, for example "4F 10 02 AA BB".
PropertyListObject objectOf(const Bytes& encoded, Bytes& file) {
  file = File{.objects = encoded}.bytes();
  const auto list = BinaryPropertyList::open(file);
  return list ? list->object(0) : PropertyListObject();
}

Bytes bigEndian(uint8_t marker, uint64_t value, size_t size) {
  Bytes out{marker};
  appendBigEndian(out, value, size);
  return out;
}

/// A marker with a count of eight bytes and nothing behind it.
Bytes claiming(uint8_t marker, uint64_t count) {
  Bytes out{marker, 0x13};
  appendBigEndian(out, count, 8);
  return out;
}

}  // namespace

TEST(BinaryPropertyList, FilesThatDoNotAddUp) {
  const uint64_t huge = UINT64_MAX;
  const std::pair<const char*, File> cases[] = {
      {"bplist15", {.magic = "bplist15"}},
      {"bplist without a revision", {.magic = "bplistXX"}},
      {"offsets of no bytes", {.offsetSize = 0}},
      {"offsets of 9 bytes", {.offsetSize = 9}},
      {"offsets of 255 bytes", {.offsetSize = 255}},
      {"references of no bytes", {.refSize = 0}},
      {"references of 9 bytes", {.refSize = 9}},
      {"references of 255 bytes", {.refSize = 255}},
      {"no objects", {.offsets = {}}},
      {"count 0", {.count = 0}},
      {"count one more than there are", {.count = 2}},
      {"count 2^61: times eight wraps to 0", {.offsetSize = 8, .count = uint64_t{1} << 61}},
      {"count 2^61 + 1: wraps to one", {.offsetSize = 8, .count = (uint64_t{1} << 61) + 1}},
      {"count 2^64 - 1", {.count = huge}},
      {"top object not there", {.top = 1}},
      {"top object 2^64 - 1", {.top = huge}},
      {"table at 0", {.table = 0}},
      {"table in the header", {.table = 7}},
      {"table right behind the header", {.table = 8}},
      {"table overlapping the trailer", {.table = 10}},
      {"table behind the trailer", {.table = 1000}},
      {"table at 2^64 - 1", {.table = huge}},
      {"offset of the table", {.offsets = {9}}},
      {"offset beyond the file", {.offsets = {255}}},
      {"one bad offset among good ones", {.offsets = {8, 8, 77, 8}}},
      {"trailing garbage", {.appended = {0}}},
      {"a second trailer", {.appended = Bytes(32, 0)}},
      {"256 objects with references of one byte", {.offsets = std::vector<uint64_t>(256, 8)}},
  };
  ASSERT_TRUE(BinaryPropertyList::open(File{}.bytes()));
  for (const auto& [name, file] : cases) {
    EXPECT_FALSE(BinaryPropertyList::open(file.bytes())) << name;
  }
  const auto data = madeArchive("good/everything");
  const auto whole = data->bytes();
  for (size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(BinaryPropertyList::open(whole.first(length))) << length;
  }
}

TEST(BinaryPropertyList, UnusualFilesThatAreFine) {
  EXPECT_TRUE(BinaryPropertyList::open(File{.magic = "bplist01"}.bytes()));
  for (uint8_t size = 1; size <= 8; ++size) {
    // An array of two references to a bool.
    Bytes objects{0x09, 0xA2};
    for (int i = 0; i < 2; ++i) appendBigEndian(objects, 0, size);
    const Bytes bytes =
        File{.objects = objects, .offsets = {8, 9}, .offsetSize = size, .refSize = size, .top = 1}
            .bytes();
    const auto list = BinaryPropertyList::open(bytes);
    ASSERT_TRUE(list) << int{size};
    const PropertyListObject array = list->object(list->topObject());
    ASSERT_EQ(array.count(), 2U);
    EXPECT_TRUE(list->object(list->element(array, 1)).boolean());
  }
  // A bad offset into the header and objects inside each other matter only to who asks.
  const Bytes bytes = File{.objects = {0x41, 0x09}, .offsets = {8, 9, 3}}.bytes();
  const auto list = BinaryPropertyList::open(bytes);
  ASSERT_TRUE(list);
  EXPECT_EQ(list->object(0).data()[0], 0x09);
  EXPECT_TRUE(list->object(1).boolean());
  EXPECT_EQ(list->object(2).kind(), Kind::kInvalid);
  EXPECT_EQ(list->object(3).kind(), Kind::kInvalid);
  EXPECT_EQ(list->object(UINT32_MAX).kind(), Kind::kInvalid);
}

TEST(BinaryPropertyList, ObjectsThatAreMalformed) {
  const std::pair<const char*, Bytes> cases[] = {
      {"fill byte", {0x0F}},
      {"unknown simple marker", {0x07}},
      {"unknown markers", {0x70}},
      {"reserved marker", {0xB1, 0x00}},
      {"integer of 32 bytes", Bytes(33, 0x15)},
      {"integer cut off", {0x13, 0, 0}},
      {"real of 2 bytes", {0x21, 0, 0}},
      {"real of 16 bytes", Bytes(17, 0x24)},
      {"real cut off", {0x23, 0}},
      {"date of 4 bytes", {0x32, 0, 0, 0, 0}},
      {"UID above 2^32 - 1", {0x84, 1, 0, 0, 0, 0}},
      {"UID cut off", {0x83, 0, 0}},
      {"count that is no integer", {0x4F, 0x51, 0x41}},
      {"count of 16 bytes", {0x4F, 0x14, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
      {"count that is not there", {0x4F}},
      {"count cut off", {0x4F, 0x12, 0}},
      {"negative count", claiming(0x4F, UINT64_MAX)},
      {"data cut off", {0x42, 0}},
      {"data of 500 MB", {0x4F, 0x12, 0x1D, 0xCD, 0x65, 0x00}},
      {"data 2^62", claiming(0x4F, uint64_t{1} << 62)},
      {"ASCII 2^31", claiming(0x5F, uint64_t{1} << 31)},
      {"UTF-16 2^63: doubled it wraps to 0", claiming(0x6F, uint64_t{1} << 63)},
      {"UTF-16 cut in the middle of a unit", {0x62, 0, 65, 0}},
      {"array 2^63", claiming(0xAF, uint64_t{1} << 63)},
      {"set 2^62", claiming(0xCF, uint64_t{1} << 62)},
      {"dictionary 2^63: doubled it wraps to 0", claiming(0xDF, uint64_t{1} << 63)},
      {"dictionary without its values", {0xD2, 0, 0, 0}},
  };
  for (const auto& [name, encoded] : cases) {
    Bytes file;
    EXPECT_EQ(objectOf(encoded, file).kind(), Kind::kInvalid) << name;
  }
}

TEST(BinaryPropertyList, Numbers) {
  struct Case {
    Bytes encoded;
    std::optional<int64_t> asSigned;
    std::optional<uint64_t> asUnsigned;
  };
  Bytes wide = bigEndian(0x14, UINT64_MAX, 8);
  appendBigEndian(wide, 5, 8);
  Bytes widest = bigEndian(0x14, 0, 8);
  appendBigEndian(widest, UINT64_MAX, 8);
  const Case cases[] = {
      {{0x10, 0xFF}, 255, 255U},
      {{0x11, 0xFF, 0xFE}, 65534, 65534U},
      {bigEndian(0x12, 0xFFFFFFFF, 4), 0xFFFFFFFF, 0xFFFFFFFFU},
      {bigEndian(0x13, UINT64_MAX, 8), -1, std::nullopt},
      {bigEndian(0x13, 7, 8), 7, 7U},
      {wide, 5, 5U},
      {widest, std::nullopt, UINT64_MAX},
  };
  for (const Case& c : cases) {
    Bytes file;
    const PropertyListObject object = objectOf(c.encoded, file);
    ASSERT_EQ(object.kind(), Kind::kInteger);
    EXPECT_EQ(object.int64(), c.asSigned);
    EXPECT_EQ(object.uint64(), c.asUnsigned);
  }
  Bytes file;
  EXPECT_EQ(objectOf(bigEndian(0x22, 0x3F800000, 4), file).real(), 1.0);
  EXPECT_TRUE(std::isnan(objectOf(bigEndian(0x33, 0x7FF8000000000000, 8), file).real()));
  EXPECT_EQ(objectOf(bigEndian(0x23, 0x8000000000000000, 8), file).real(), -0.0);
  Bytes longUID(17, 0);
  longUID[0] = 0x8F;
  longUID[16] = 9;
  EXPECT_EQ(objectOf(longUID, file).uid(), 9U);
}

TEST(BinaryPropertyList, Texts) {
  Bytes file;
  EXPECT_EQ(objectOf({0x52, 'h', 'i'}, file).text(), "hi");
  EXPECT_TRUE(objectOf({0x52, 'h', 'i'}, file).isText("hi"));
  EXPECT_FALSE(objectOf({0x52, 'h', 'i'}, file).isText("h"));
  EXPECT_EQ(objectOf({0x52, 'h', 0xE9}, file).text(), std::nullopt);
  EXPECT_EQ(objectOf({0x62, 0, 'h', 0, 0xE9}, file).text(), "h\u00e9");
  EXPECT_TRUE(objectOf({0x62, 0, 'h', 0, 0xE9}, file).isText("h\u00e9"));
  EXPECT_EQ(objectOf({0x62, 0xD8, 0x3D, 0xDE, 0x00}, file).text(), "\U0001F600");
  EXPECT_EQ(objectOf({0x62, 0xDE, 0x00, 0xD8, 0x3D}, file).text(), "\xED\xB8\x80\xED\xA0\xBD");
  EXPECT_EQ(objectOf({0x61, 0, 0}, file).text(), std::string(1, '\0'));
  EXPECT_EQ(objectOf({0x41, 'a'}, file).text(), std::nullopt);
}

TEST(BinaryPropertyList, DictionariesWithOddKeys) {
  // Keys: a number, "k", "k" again, one that is not there; values 1, 2, 3, and the dictionary.
  const Bytes bytes = File{
      .objects = {0xD4, 1, 2, 2, 99, 1, 3, 4, 0, 0x10, 1, 0x51, 'k', 0x10, 2, 0x10, 3},
      .offsets = {8, 17, 19, 21,
                  23}}.bytes();
  const auto list = BinaryPropertyList::open(bytes);
  ASSERT_TRUE(list);
  const PropertyListObject dictionary = list->object(0);
  ASSERT_EQ(dictionary.count(), 4U);
  EXPECT_EQ(list->find(dictionary, "k").int64(), 2);
  EXPECT_EQ(list->find(dictionary, "l").kind(), Kind::kInvalid);
  EXPECT_EQ(list->find(list->object(1), "k").kind(), Kind::kInvalid);
  EXPECT_EQ(list->object(list->key(dictionary, 3)).kind(), Kind::kInvalid);
  EXPECT_EQ(list->object(list->value(dictionary, 3)).kind(), Kind::kDictionary);
}

TEST(BinaryPropertyList, RecordedPath) {
  // An archived path of two points, width 2, square caps, bevelled joins.
  const auto data = madeArchive("good/recorded_path");
  ASSERT_EQ(data->length(), 301U);
  const auto list = BinaryPropertyList::open(data->bytes());
  ASSERT_TRUE(list);
  const PropertyListObject top = list->object(list->topObject());
  const PropertyListObject objects = list->find(top, "$objects");
  ASSERT_EQ(objects.count(), 3U);
  const PropertyListObject path = list->object(list->element(objects, 1));
  const auto segments = list->find(path, "NSSegments").data();
  ASSERT_EQ(segments.size(), 18U);
  EXPECT_EQ(segments[9], 1);
  EXPECT_EQ(loadBigEndianFloat(&segments[10]), 8.0F);
  EXPECT_EQ(loadBigEndianFloat(&segments[14]), 3.0F);
  EXPECT_EQ(list->find(path, "NSLineWidth").real(), 2.0);
  EXPECT_EQ(list->find(path, "NSJoinStyle").int64(), 2);
  EXPECT_EQ(list->find(path, "$class").uid(), 2U);
}

TEST(BinaryPropertyList, DamageAnywhereEndsCleanly) {
  const SampleCoding coding([](Sample&, NSCoder& coder) {
    for (const std::string& key : coder.decodableKeys()) coder.decodeObjectForKey(key);
    return true;
  });
  const auto whole = madeArchive("good/everything");
  Bytes bytes(whole->bytes().begin(), whole->bytes().end());
  size_t opened = 0;
  for (uint8_t& byte : bytes) {
    const uint8_t good = byte;
    for (const int damaged : {0x00, 0x0F, 0xFF, good ^ 0x80, good ^ 0x01, good ^ 0x10}) {
      byte = static_cast<uint8_t>(damaged);
      opened += BinaryPropertyList::open(bytes) ? 1 : 0;
      try {
        NSKeyedUnarchiver::unarchiveObjectWithData(NSData::dataWithBytes(bytes));
      } catch (const NSException&) {
      }
    }
    byte = good;
  }
  // Most damage leaves a list that opens, so that the objects have really been looked at.
  EXPECT_GT(opened, 3 * bytes.size());
}

TEST(BinaryPropertyListWriter, WidthsAndSharing) {
  BinaryPropertyListWriter writer;
  using Ref = BinaryPropertyListWriter::Ref;
  EXPECT_EQ(writer.addString("same"), writer.addString("same"));
  EXPECT_EQ(writer.addInteger(255), writer.addUnsigned(255));
  EXPECT_NE(writer.addFloat(1), writer.addDouble(1));
  EXPECT_NE(writer.addDouble(0.0), writer.addDouble(-0.0));
  EXPECT_NE(writer.addInteger(1), writer.addUID(1));
  EXPECT_NE(writer.addString("x"), writer.addData(std::vector<uint8_t>{'x'}));
  const Ref key = writer.addString("k");
  const Ref inner = writer.addInteger(-1);
  const Ref array = writer.addArray(std::vector<Ref>{inner, inner});
  const Ref top = writer.addDictionary(std::vector<Ref>{key}, std::vector<Ref>{array});
  const Bytes bytes = writer.finish(top);
  // What the top does not reach is left out; then dictionary, key, array, element.
  const Bytes expected{'b',  'p', 'l', 'i',  's',  't',  '0',  '0',  0xD1, 1,    2,    0x51, 'k',
                       0xA2, 3,   3,   0x13, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 8,
                       11,   13,  16,  0,    0,    0,    0,    0,    0,    1,    1,    0,    0,
                       0,    0,   0,   0,    0,    4,    0,    0,    0,    0,    0,    0,    0,
                       0,    0,   0,   0,    0,    0,    0,    0,    25};
  EXPECT_EQ(bytes, expected);
}
