#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/BinaryPropertyList.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/values/NSDate.h"
#include "platform/foundation/values/NSNull.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/foundation/values/NSURL.h"
#include "platform/foundation/values/NSValue.h"
#include "support/Archives.h"

namespace {

std::shared_ptr<NSMutableData> archiveOf(const std::function<void(NSKeyedArchiver&)>& encode) {
  auto data = std::make_shared<NSMutableData>();
  NSKeyedArchiver archiver(data);
  archiver.setOutputFormat(NSPropertyListBinaryFormat_v1_0);
  encode(archiver);
  archiver.finishEncoding();
  return data;
}

std::shared_ptr<NSString> string(const char* utf8) {
  return NSString::stringWithString(utf8);
}

}  // namespace

TEST(NSKeyedArchiver, KindsOnDisk) {
  const uint8_t bytes[] = {1, 0, 1};
  const auto data = archiveOf([&](NSCoder& c) {
    c.encodeBool(true, "bool");
    c.encodeInt32(7, "small");
    c.encodeInt64(-1, "negative");
    c.encodeInteger(3000000000, "large");
    c.encodeInt64(int64_t{1} << 40, "largest");
    c.encodeFloat(0.1F, "float");
    c.encodeDouble(0.5, "double");
    c.encodeBytes(bytes, "bytes");
    c.encodeObject(nullptr, "nil");
    c.encodePoint({0.5, -2}, "point");
    c.encodeSize({640, 480}, "size");
    c.encodeRect(NSMakeRect(1, 2, 3.25, 4), "rect");
    c.encodeObject(NSNumber::numberWithUnsignedInteger(UINT64_MAX), "unsigned");
    c.encodeInt32(1, "$odd");
    c.encodeInt32(8, "small");
  });
  EXPECT_EQ(describeArchive(data->bytes()),
            "$top {bool: bool True, small: int8 8, negative: int64 -1, large: int32 3000000000, "
            "largest: int64 1099511627776, float: real32 0.10000000149011612, double: real64 0.5, "
            "bytes: data(3) 010001, nil: ->0, point: ->1, size: ->2, rect: ->3, unsigned: ->4, "
            "$$odd: int8 1}\n"
            "  0 '$null'\n"
            "  1 '{0.5, -2}'\n"
            "  2 '{640, 480}'\n"
            "  3 '{{1, 2}, {3.25, 4}}'\n"
            "  4 int128 18446744073709551615\n");
}

TEST(NSKeyedArchiver, ObjectsOnDisk) {
  const auto shared = string("na\u00efve");
  const auto list = std::make_shared<NSMutableArray>();
  list->addObject(shared);
  list->addObject(shared);
  list->addObject(NSNull::null());
  list->addObject(std::make_shared<NSMutableString>("m"));
  list->addObject(std::make_shared<NSMutableData>(std::vector<uint8_t>{1, 2}));
  list->addObject(NSData::dataWithVector({3}));
  list->addObject(std::make_shared<NSDictionary>(
      std::vector<NSDictionary::Pair>{{string("k"), NSNumber::numberWithFloat(2.5F)}}));
  list->addObject(std::make_shared<NSOrderedSet>(NSArray::Objects{shared}));
  list->addObject(NSValue::valueWithRange({5, 6}));
  list->addObject(NSDate::dateWithTimeIntervalSince1970(0));
  list->addObject(std::make_shared<NSURL>("r", NSURL::URLWithString("b:")));
  const auto data = NSKeyedArchiver::archivedDataWithRootObject(list);
  EXPECT_EQ(
      describeArchive(data->bytes()),
      "$top {root: ->1}\n"
      "  0 '$null'\n"
      "  1 {NS.objects: [->2, ->2, ->3, ->5, ->7, ->9, ->10, ->14, ->16, ->20, ->22], $class: "
      "->27}\n"
      "  2 'na\u00efve'\n"
      "  3 {$class: ->4}\n"
      "  4 {$classname: 'NSNull', $classes: ['NSNull', 'NSObject']}\n"
      "  5 {NS.string: 'm', $class: ->6}\n"
      "  6 {$classname: 'NSMutableString', $classes: ['NSMutableString', 'NSString', 'NSObject']}\n"
      "  7 {NS.data: data(2) 0102, $class: ->8}\n"
      "  8 {$classname: 'NSMutableData', $classes: ['NSMutableData', 'NSData', 'NSObject']}\n"
      "  9 data(1) 03\n"
      " 10 {NS.keys: [->11], NS.objects: [->12], $class: ->13}\n"
      " 11 'k'\n"
      " 12 real32 2.5\n"
      " 13 {$classname: 'NSDictionary', $classes: ['NSDictionary', 'NSObject']}\n"
      " 14 {NS.object.0: ->2, $class: ->15}\n"
      " 15 {$classname: 'NSOrderedSet', $classes: ['NSOrderedSet', 'NSObject']}\n"
      " 16 {NS.rangeval.location: ->17, NS.rangeval.length: ->18, NS.special: int8 4, $class: "
      "->19}\n"
      " 17 int8 5\n"
      " 18 int8 6\n"
      " 19 {$classname: 'NSValue', $classes: ['NSValue', 'NSObject']}\n"
      " 20 {NS.time: real64 -978307200.0, $class: ->21}\n"
      " 21 {$classname: 'NSDate', $classes: ['NSDate', 'NSObject']}\n"
      " 22 {NS.base: ->23, NS.relative: ->26, $class: ->25}\n"
      " 23 {NS.base: ->0, NS.relative: ->24, $class: ->25}\n"
      " 24 'b:'\n"
      " 25 {$classname: 'NSURL', $classes: ['NSURL', 'NSObject']}\n"
      " 26 'r'\n"
      " 27 {$classname: 'NSMutableArray', $classes: ['NSMutableArray', 'NSArray', 'NSObject']}\n");
}

TEST(NSKeyedArchiver, ConditionalObjectsAndCycles) {
  const auto wanted = string("wanted");
  const auto unwanted = string("unwanted");
  const auto loop = std::make_shared<NSMutableArray>();
  loop->addObject(loop);
  const auto data = archiveOf([&](NSCoder& c) {
    c.encodeConditionalObject(unwanted, "u");
    c.encodeConditionalObject(wanted, "before");
    c.encodeObject(wanted, "w");
    c.encodeConditionalObject(wanted, "after");
    c.encodeConditionalObject(nullptr, "nil");
    c.encodeObject(loop, "loop");
  });
  EXPECT_EQ(describeArchive(data->bytes()),
            "$top {u: ->1, before: ->2, w: ->2, after: ->2, nil: ->0, loop: ->3}\n"
            "  0 '$null'\n  1 '$null'\n  2 'wanted'\n"
            "  3 {NS.objects: [->3], $class: ->4}\n"
            "  4 {$classname: 'NSMutableArray', $classes: ['NSMutableArray', 'NSArray', "
            "'NSObject']}\n");
  loop->removeAllObjects();
}

TEST(NSKeyedArchiver, OtherToolsReadIt) {
  // More than 255 objects and more than 64 KiB: references of two bytes, offsets of four.
  const auto list = std::make_shared<NSMutableArray>();
  for (int i = 0; i < 400; ++i) list->addObject(string(("text " + std::to_string(i)).c_str()));
  list->addObject(string("\u00e4\U0001F600"));
  list->addObject(NSData::dataWithVector(std::vector<uint8_t>(70000, 0xAB)));
  list->addObject(NSNumber::numberWithInteger(std::numeric_limits<int64_t>::min()));
  const auto data = NSKeyedArchiver::archivedDataWithRootObject(list);
  EXPECT_EQ(data->bytes()[data->length() - 26], 4);
  EXPECT_EQ(data->bytes()[data->length() - 25], 2);
  const std::string summary =
      "import plistlib,sys; o = plistlib.load(open(sys.argv[1],'rb'))['\\$objects']; "
      "print(len(o), o[401], o[402].encode('unicode-escape'), len(o[403]), o[404])";
  const std::string program = std::string(PAINT_PYTHON) + " -c \"" + summary + "\" ";
  // One entry each for nil, the array, its elements and its class.
  const std::string expected = "406 text 399 b'\\\\xe4\\\\U0001f600' 70000 -9223372036854775808\n";
  EXPECT_EQ(outputOf(program + "{}", data->bytes()), expected);
  const std::string throughXML =
      "plistutil -i {} -f xml -o - | plistutil -i - -f bin -o /dev/stdout";
  const std::string again = outputOf(throughXML, data->bytes());
  const auto root = std::dynamic_pointer_cast<NSArray>(NSKeyedUnarchiver::unarchiveObjectWithData(
      NSData::dataWithBytes({reinterpret_cast<const uint8_t*>(again.data()), again.size()})));
  ASSERT_EQ(root->count(), 403U);
  for (const size_t i : {0U, 399U, 400U, 401U, 402U}) {
    EXPECT_TRUE(root->objectAtIndex(i)->isEqual(*list->objectAtIndex(i))) << i;
  }
}

TEST(NSKeyedArchiver, RoundTripsLoseNothing) {
  const auto list = std::make_shared<NSMutableArray>();
  for (const char* text :
       {"", "$null", "plain", "\u00e4", "\U0001F600", "\xED\xA0\x80 lone", "\xED\xB0\x80"}) {
    list->addObject(string(text));
    list->addObject(std::make_shared<NSMutableString>(text));
  }
  const auto real = [](double v) { return NSNumber::numberWithDouble(v); };
  for (const double v : {0.1, -0.0, 1e308, 5e-324, HUGE_VAL}) list->addObject(real(v));
  for (const int64_t v : {INT64_MIN, int64_t{-1}, int64_t{255}, int64_t{256}, int64_t{65536},
                          int64_t{1} << 32, INT64_MAX}) {
    list->addObject(NSNumber::numberWithInteger(v));
  }
  list->addObject(NSNumber::numberWithUnsignedInteger(uint64_t{1} << 63));
  list->addObject(NSNumber::numberWithBool(true));
  list->addObject(NSValue::valueWithRect(NSMakeRect(0.1, 1e300, -3, 4)));
  list->addObject(NSValue::valueWithPoint({1.0 / 3, 2}));
  list->addObject(NSValue::valueWithSize({7, 8}));
  list->addObject(std::make_shared<NSValue>(CGAffineTransform{1, 2, 3, 4, 5, 6}));
  list->addObject(NSValue::valueWithRange({UINT64_MAX, 1}));
  list->addObject(NSDate::dateWithTimeIntervalSinceReferenceDate(0.25));
  const auto data = NSKeyedArchiver::archivedDataWithRootObject(list);
  const auto root =
      std::dynamic_pointer_cast<NSArray>(NSKeyedUnarchiver::unarchiveObjectWithData(data));
  ASSERT_EQ(root->count(), list->count());
  for (size_t i = 0; i < list->count(); ++i) {
    const NSObject& before = *list->objectAtIndex(i);
    const NSObject& after = *root->objectAtIndex(i);
    EXPECT_TRUE(after.isEqual(before)) << i;
    EXPECT_EQ(after.className(), before.className()) << i;
  }
  EXPECT_TRUE(std::signbit(static_cast<const NSNumber&>(*root->objectAtIndex(15)).doubleValue()));
  // Writing what was read gives the same bytes.
  EXPECT_TRUE(NSKeyedArchiver::archivedDataWithRootObject(root)->isEqual(*data));
}

TEST(NSKeyedArchiver, Misuse) {
  const auto data = std::make_shared<NSMutableData>();
  NSKeyedArchiver archiver(data);
  EXPECT_THROW(archiver.setOutputFormat(100), NSException);
  EXPECT_THROW(archiver.decodeObjectForKey("x"), NSException);
  archiver.finishEncoding();
  const size_t length = data->length();
  EXPECT_THROW(archiver.encodeBool(true, "late"), NSException);
  EXPECT_THROW(archiver.encodeObject(string("late"), "late"), NSException);
  archiver.finishEncoding();
  EXPECT_EQ(data->length(), length);
}
