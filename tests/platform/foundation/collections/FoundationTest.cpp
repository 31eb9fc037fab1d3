#include <gtest/gtest.h>

#include <cmath>

#include "platform/foundation/Convert.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/Unicode.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/foundation/values/NSURL.h"

namespace {

std::shared_ptr<NSString> string(const std::string& utf8) {
  return NSString::stringWithString(utf8);
}

}  // namespace

TEST(Unicode, AnyUnitsSurvive) {
  // Every pair out of: plain, accented, both kinds of surrogate at both ends of their ranges.
  const char16_t units[] = {u'a',   0x80,   0x7FF,  0x800,  0xD7FF, 0xD800,
                            0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFF, 0};
  for (const char16_t a : units) {
    for (const char16_t b : units) {
      const std::u16string text{a, b};
      const std::string utf8 = utf8FromUTF16(text);
      EXPECT_EQ(utf16FromUTF8(utf8), text) << std::hex << int{a} << ' ' << int{b};
      EXPECT_EQ(utf16Length(utf8), 2U);
    }
  }
  EXPECT_EQ(utf8FromUTF16(u"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
}

TEST(Unicode, WhatIsNotUTF8) {
  const std::pair<const char*, std::u16string> cases[] = {
      {"a\x80z", u"a\xFFFDz"},        // a tail without a head
      {"\xC3", u"\xFFFD"},            // a head without a tail
      {"\xC0\xAF", u"\xFFFD\xFFFD"},  // overlong
      {"\xE0\x80\xAF", u"\xFFFD\xFFFD\xFFFD"},
      {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},  // beyond U+10FFFF
      {"\xFF\xFE", u"\xFFFD\xFFFD"},
      {"\xE2\x82z", u"\xFFFD\xFFFDz"},
  };
  for (const auto& [bytes, expected] : cases) EXPECT_EQ(utf16FromUTF8(bytes), expected) << bytes;
}

TEST(NSNumber, ConvertsLikeTheKindItIs) {
  EXPECT_EQ(NSNumber::numberWithDouble(-2.9)->integerValue(), -2);
  EXPECT_EQ(NSNumber::numberWithDouble(1e300)->integerValue(), INT64_MAX);
  EXPECT_EQ(NSNumber::numberWithDouble(-1e300)->integerValue(), INT64_MIN);
  EXPECT_EQ(NSNumber::numberWithDouble(NAN)->integerValue(), 0);
  EXPECT_EQ(NSNumber::numberWithDouble(-1)->unsignedIntegerValue(), 0U);
  EXPECT_EQ(NSNumber::numberWithUnsignedInteger(UINT64_MAX)->doubleValue(), 0x1p64);
  EXPECT_TRUE(NSNumber::numberWithFloat(0.5F)->boolValue());
  EXPECT_EQ(clampToInteger<int32_t>(-2147483648.5), INT32_MIN);
  EXPECT_EQ(clampToInteger<uint8_t>(255.5), 255);
  EXPECT_TRUE(NSNumber::numberWithInteger(1)->isEqual(*NSNumber::numberWithBool(true)));
  EXPECT_TRUE(NSNumber::numberWithFloat(2)->isEqual(*NSNumber::numberWithInteger(2)));
  EXPECT_EQ(NSNumber::numberWithFloat(2)->hash(), NSNumber::numberWithInteger(2)->hash());
  EXPECT_FALSE(
      NSNumber::numberWithInteger(-1)->isEqual(*NSNumber::numberWithUnsignedInteger(UINT64_MAX)));
}

TEST(NSString, CountsUTF16Units) {
  EXPECT_EQ(NSString("a\u00e4\u20ac\U0001F600").length(), 5U);
  EXPECT_TRUE(NSString("x").isEqual(NSMutableString("x")));
  EXPECT_EQ(NSString("x").hash(), NSMutableString("x").hash());
}

TEST(NSDictionary, FindsAmongMany) {
  NSMutableDictionary dictionary;
  constexpr int kCount = 1000;
  for (int i = 0; i < kCount; ++i) {
    dictionary.setObject(NSNumber::numberWithInteger(i), "key " + std::to_string(i));
  }
  dictionary.setObject(NSNumber::numberWithInteger(-1), "key 500");
  EXPECT_EQ(dictionary.count(), 1000U);
  for (int i = 0; i < kCount; i += 3)
    dictionary.removeObjectForKey(NSString("key " + std::to_string(i)));
  for (int i = 0; i < kCount; ++i) {
    const auto number = dictionary.objectOfClass<NSNumber>("key " + std::to_string(i));
    ASSERT_EQ(number == nullptr, i % 3 == 0) << i;
    if (number == nullptr) continue;
    EXPECT_EQ(number->integerValue(), i == 500 ? -1 : i);
  }
  EXPECT_EQ(dictionary.allKeys().size(), dictionary.allValues().size());
  EXPECT_EQ(dictionary.objectForKey(*NSNumber::numberWithInteger(1)), nullptr);
  EXPECT_THROW(dictionary.setObject(nullptr, "x"), NSException);
}

TEST(NSSet, KeepsTheFirstOfEquals) {
  NSMutableSet set;
  for (int i = 0; i < 40; ++i) set.addObject(string(std::to_string(i % 20)));
  EXPECT_EQ(set.count(), 20U);
  set.removeObject(NSString("7"));
  EXPECT_FALSE(set.containsObject(NSString("7")));
  EXPECT_TRUE(set.containsObject(NSString("19")));
  // Collections are members by identity.
  set.addObject(std::make_shared<NSArray>());
  set.addObject(std::make_shared<NSArray>());
  EXPECT_EQ(set.count(), 21U);
}

TEST(NSArray, RefusesWhatIsNotThere) {
  NSMutableArray array({string("a"), string("c")});
  array.insertObject(string("b"), 1);
  array.replaceObjectAtIndex(2, string("d"));
  array.removeObjectAtIndex(0);
  ASSERT_EQ(array.count(), 2U);
  EXPECT_TRUE(array.objectAtIndex(1)->isEqual(NSString("d")));
  EXPECT_THROW(static_cast<void>(array.objectAtIndex(2)), NSException);
  EXPECT_THROW(array.insertObject(string("x"), 3), NSException);
  EXPECT_THROW(array.removeObjectAtIndex(2), NSException);
  EXPECT_THROW(array.addObject(nullptr), NSException);
  EXPECT_THROW(NSArray({nullptr}), NSException);
}

TEST(NSURL, Paths) {
  struct Case {
    const char* url;
    bool isFile;
    const char* path;
  };
  const Case cases[] = {
      {"file:///a/b", true, "/a/b"},
      {"FILE://localhost/a%20b%2Fc", true, "/a b/c"},
      {"file:/a", true, "/a"},
      {"file://server/a", false, "/a"},
      {"http://h/p?q#f", false, "/p"},
      {"file:///100%", true, "/100%"},
      {"file:///%zz%4", true, "/%zz%4"},
      {"plain name", false, "plain name"},
      {"", false, ""},
  };
  for (const Case& c : cases) {
    const NSURL url(c.url);
    EXPECT_EQ(url.isFileURL(), c.isFile) << c.url;
    EXPECT_EQ(url.path(), c.path) << c.url;
  }
  // Any file name comes back, also one that is not UTF-8.
  for (const char* path : {"/a b", "/50%41", "/x\xFF\ny", "/#?;", "/-"}) {
    EXPECT_EQ(NSURL::fileURLWithPath(path)->path(), path);
  }
  EXPECT_TRUE(NSURL::fileURLWithPath("x")->path().ends_with("/x"));
}

TEST(NSURL, RelativeToABase) {
  const auto base = NSURL::URLWithString("file:///a/b?q");
  const auto absolute = [&](const char* text) { return NSURL(text, base).absoluteString(); };
  EXPECT_EQ(absolute("c"), "file:///a/c");
  EXPECT_EQ(absolute("/c"), "file:///c");
  EXPECT_EQ(absolute("http:x"), "http:x");
  EXPECT_FALSE(NSURL("c", base).isEqual(NSURL("c")));
  EXPECT_TRUE(NSURL("c", base).isEqual(NSURL("c", NSURL::URLWithString("file:///a/b?q"))));
}
