#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "platform/foundation/NSException.h"
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

/// Name of the exception that an action ends in, "" for none.
template <class Action>
std::string exceptionOf(Action action) {
  try {
    action();
    return "";
  } catch (const NSException& exception) {
    return exception.name();
  }
}

std::string text(NSCoder& coder, const char* key) {
  return coder.decodeStringForKey(key).value_or("(none)");
}

/// Runs checks inside the root object of an archive.
void inside(const char* archive, const std::function<void(Sample&, NSCoder&)>& checks) {
  bool ran = false;
  const SampleCoding coding([&](Sample& sample, NSCoder& coder) {
    checks(sample, coder);
    ran = true;
    return true;
  });
  NSKeyedUnarchiver::unarchiveObjectWithData(madeArchive(archive));
  EXPECT_TRUE(ran);
}

}  // namespace

TEST(NSKeyedUnarchiver, NumbersAndGeometry) {
  inside("good/everything", [](Sample&, NSCoder& c) {
    EXPECT_TRUE(c.decodeBoolForKey("true"));
    EXPECT_FALSE(c.decodeBoolForKey("false"));
    EXPECT_EQ(c.decodeInt32ForKey("int8"), 200);
    EXPECT_EQ(c.decodeIntForKey("int16"), 40000);
    EXPECT_EQ(c.decodeInt64ForKey("int32"), 3000000000);
    EXPECT_EQ(c.decodeIntegerForKey("int64"), int64_t{1} << 40);
    EXPECT_EQ(c.decodeInt32ForKey("negative"), -1);
    EXPECT_EQ(c.decodeInt32ForKey("wide"), 7);
    EXPECT_EQ(c.decodeDoubleForKey("unsigned"), 0x1p64);
    EXPECT_EQ(c.decodeNumberForKey("unsigned")->unsignedIntegerValue(), UINT64_MAX - 1);
    EXPECT_EQ(c.decodeFloatForKey("float"), 0.1F);
    EXPECT_EQ(c.decodeDoubleForKey("float"), 0.10000000149011612);
    EXPECT_EQ(c.decodeDoubleForKey("double"), 0.1);
    EXPECT_TRUE(std::isnan(c.decodeDoubleForKey("nan")));
    EXPECT_EQ(c.decodeFloatForKey("infinity"), -INFINITY);
    EXPECT_EQ(c.decodePointForKey("point"), NSMakePoint(0.5, -2));
    EXPECT_EQ(c.decodeSizeForKey("size"), NSMakeSize(640, 480));
    EXPECT_EQ(c.decodeRectForKey("rect"), NSMakeRect(1, 2, 3.25, 842.5997125));
    EXPECT_EQ(c.decodeInt32ForKey("$odd"), 7);
  });
}

TEST(NSKeyedUnarchiver, StringsAndBytes) {
  inside("good/everything", [](Sample& sample, NSCoder& c) {
    EXPECT_EQ(text(c, "ascii"), "plain");
    EXPECT_EQ(text(c, "unicode"), "na\u00efve \U0001F600");
    EXPECT_EQ(text(c, "lone"),
              "a\xED\xA0\x80"
              "b\xED\xB0\x80");
    EXPECT_EQ(text(c, "zeros"), std::string("a\0b", 3));
    EXPECT_EQ(text(c, "mutable"), "m\u00e4h");
    EXPECT_NE(c.decodeObjectOfClass<NSMutableString>("mutable"), nullptr);
    EXPECT_EQ(text(c, "bytes string"), "b\u00fc");
    const auto bytes = c.decodeBytesForKey("bytes");
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin(), bytes.end()), (std::vector<uint8_t>{1, 0, 1}));
    EXPECT_TRUE(c.decodeBytesForKey("no bytes").empty());
    EXPECT_EQ(c.decodeBytesForKey("data").size(), 3U);
    EXPECT_EQ(c.decodeBytesForKey("mutable data").size(), 1024U);
    EXPECT_EQ(c.decodeDataForKey("mutable data")->bytes()[257], 1);
    EXPECT_TRUE(c.containsValueForKey("nil"));
    EXPECT_FALSE(c.containsValueForKey("$class"));
    EXPECT_EQ(c.decodeObjectForKey("nil"), nullptr);
    EXPECT_EQ(c.decodeObjectForKey("self").get(), &sample);
    EXPECT_TRUE(c.isDecoding(sample));
  });
}

TEST(NSKeyedUnarchiver, Values) {
  inside("good/everything", [](Sample&, NSCoder& c) {
    const auto list = c.decodeObjectOfClass<NSArray>("list");
    ASSERT_EQ(list->count(), 7U);
    const auto kind = [&](size_t i) {
      return static_cast<const NSNumber&>(*list->objectAtIndex(i)).kind();
    };
    EXPECT_EQ(kind(0), NSNumber::Kind::kInteger);
    EXPECT_EQ(kind(1), NSNumber::Kind::kDouble);
    EXPECT_EQ(kind(2), NSNumber::Kind::kFloat);
    EXPECT_EQ(kind(3), NSNumber::Kind::kBool);
    EXPECT_TRUE(list->objectAtIndex(6)->isKindOfClass(NSNull::kClass));
    EXPECT_EQ(c.decodeObjectForKey("empty list")->className(), "NSMutableArray");
    const auto dict = c.decodeObjectOfClass<NSMutableDictionary>("dict");
    EXPECT_EQ(dict->objectOfClass<NSNumber>("k")->integerValue(), 1);
    EXPECT_EQ(dict->objectOfClass<NSString>("l")->string(), "two");
    EXPECT_EQ(dict->objectForKey("m"), nullptr);
    EXPECT_EQ(c.decodeObjectOfClass<NSSet>("set")->count(), 2U);
    EXPECT_EQ(c.decodeObjectOfClass<NSDate>("date")->timeIntervalSince1970(), 86400.5);
    EXPECT_EQ(c.decodeObjectOfClass<NSURL>("url")->absoluteString(), "file:///a/b%20c");
    EXPECT_EQ(c.decodeObjectOfClass<NSURL>("url")->path(), "/a/b c");
    EXPECT_EQ(c.decodeObjectOfClass<NSValue>("vpoint")->pointValue(), NSMakePoint(1, 2));
    EXPECT_EQ(c.decodeObjectOfClass<NSValue>("vsize")->sizeValue(), NSMakeSize(3, 4));
    EXPECT_EQ(c.decodeObjectOfClass<NSValue>("vrect")->rectValue(), NSMakeRect(1, 2, 3, 4));
    EXPECT_EQ(c.decodeObjectOfClass<NSValue>("vrange")->rangeValue(), (NSRange{5, 6}));
    const auto keys = c.decodableKeys();
    EXPECT_EQ(keys.size(), 39U);
    EXPECT_NE(std::ranges::find(keys, "$odd"), keys.end());
  });
}

TEST(NSKeyedUnarchiver, KindsThatAreNotStored) {
  const std::string kWrong = NSInvalidUnarchiveOperationException;
  const std::string kRange = NSRangeException;
  inside("good/everything", [&](Sample&, NSCoder& c) {
    // Number kinds convert into each other, nothing else into a number.
    EXPECT_EQ(c.decodeInt32ForKey("true"), 1);
    EXPECT_TRUE(c.decodeBoolForKey("negative"));
    EXPECT_FALSE(c.decodeBoolForKey("absent"));
    EXPECT_EQ(c.decodeDoubleForKey("int8"), 200.0);
    EXPECT_EQ(c.decodeInt64ForKey("double"), 0);
    EXPECT_EQ(exceptionOf([&] { c.decodeInt32ForKey("int32"); }), kRange);
    EXPECT_EQ(exceptionOf([&] { c.decodeInt64ForKey("unsigned"); }), kRange);
    EXPECT_EQ(exceptionOf([&] { c.decodeInt64ForKey("nan"); }), kRange);
    EXPECT_EQ(exceptionOf([&] { c.decodeInt32ForKey("infinity"); }), kRange);
    for (const char* key : {"bytes", "nil", "ascii", "self"}) {
      EXPECT_EQ(exceptionOf([&] { c.decodeBoolForKey(key); }), kWrong) << key;
      EXPECT_EQ(exceptionOf([&] { c.decodeInt64ForKey(key); }), kWrong) << key;
      EXPECT_EQ(exceptionOf([&] { c.decodeFloatForKey(key); }), kWrong) << key;
    }
    for (const char* key : {"int8", "true", "ascii", "list"}) {
      EXPECT_EQ(exceptionOf([&] { c.decodeBytesForKey(key); }), kWrong) << key;
    }
    // What is no object is nil where an object is asked for.
    for (const char* key : {"int8", "bytes", "absent"}) {
      EXPECT_EQ(c.decodeObjectForKey(key), nullptr) << key;
      EXPECT_EQ(c.decodeStringForKey(key), std::nullopt) << key;
      EXPECT_EQ(c.decodeRectForKey(key), NSZeroRect) << key;
    }
    EXPECT_TRUE(c.decodeBytesForKey("nil").empty());
    EXPECT_EQ(c.decodeObjectOfClass<NSArray>("ascii"), nullptr);
    EXPECT_EQ(exceptionOf([&] { c.encodeBool(true, "x"); }), NSInvalidArgumentException);
  });
}

TEST(NSKeyedUnarchiver, HistoricForms) {
  NSKeyedUnarchiver c(madeArchive("good/historic"));
  const auto array = c.decodeObjectOfClass<NSArray>("array");
  ASSERT_EQ(array->count(), 12U);
  EXPECT_TRUE(array->objectAtIndex(11)->isEqual(NSString("item 11")));
  EXPECT_EQ(c.decodeObjectOfClass<NSArray>("gap")->count(), 1U);
  const auto dictionary = c.decodeObjectOfClass<NSDictionary>("dictionary");
  EXPECT_EQ(dictionary->objectOfClass<NSString>("key 7")->string(), "item 7");
  EXPECT_EQ(c.decodeObjectOfClass<NSOrderedSet>("ordered set")->count(), 12U);
  EXPECT_EQ(c.decodeNumberForKey("number")->integerValue(), int64_t{1} << 60);
  EXPECT_EQ(c.decodeNumberForKey("int")->integerValue(), -5);
  EXPECT_EQ(c.decodeNumberForKey("double")->doubleValue(), 2.5);
  EXPECT_EQ(c.decodeNumberForKey("bool")->kind(), NSNumber::Kind::kBool);
  EXPECT_EQ(c.decodeDataForKey("data")->length(), 3U);
  EXPECT_EQ(text(c, "text of object"), "by reference");
  EXPECT_EQ(c.decodeObjectOfClass<NSDictionary>("more keys")->count(), 1U);
  EXPECT_EQ(
      c.decodeObjectOfClass<NSDictionary>("twice")->objectOfClass<NSNumber>("a")->integerValue(),
      1);
}

TEST(NSKeyedUnarchiver, SharingCyclesAndNil) {
  std::shared_ptr<NSArray> cycle;
  {
    NSKeyedUnarchiver c(madeArchive("good/graph"));
    EXPECT_EQ(c.decodeObjectForKey("one"), c.decodeObjectForKey("two"));
    cycle = c.decodeObjectOfClass<NSArray>("cycle");
    EXPECT_EQ(c.decodeObjectForKey("unwanted"), nullptr);
    EXPECT_EQ(c.decodeObjectForKey("hinted")->className(), "NSArray");
    EXPECT_EQ(c.decodeObjectForKey("with nil"), nullptr);
    EXPECT_EQ(c.decodeObjectForKey("with unwanted"), nullptr);
    EXPECT_EQ(c.decodeObjectForKey("dictionary with nil"), nullptr);
    EXPECT_EQ(c.decodeObjectOfClass<NSURL>("url")->baseURL(), nullptr);
    c.finishDecoding();
    EXPECT_EQ(exceptionOf([&] { c.decodeObjectForKey("one"); }),
              NSInvalidUnarchiveOperationException);
    EXPECT_EQ(exceptionOf([&] { static_cast<void>(c.containsValueForKey("one")); }),
              NSInvalidUnarchiveOperationException);
  }
  // What leads back is left out, so that nothing owns itself.
  ASSERT_EQ(cycle->count(), 2U);
  EXPECT_EQ(cycle.use_count(), 1);
  const auto dictionary = std::dynamic_pointer_cast<NSDictionary>(cycle->objectAtIndex(1));
  ASSERT_EQ(dictionary->count(), 1U);
  EXPECT_NE(dictionary->objectForKey("kept"), nullptr);
}

TEST(NSKeyedUnarchiver, ManyKeysInAnyOrder) {
  for (const char* name : {"good/many_keys", "good/shuffled_keys"}) {
    inside(name, [](Sample&, NSCoder& c) {
      for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(c.decodeInt32ForKey("key " + std::to_string(i)), i);
      }
      EXPECT_FALSE(c.containsValueForKey("key 1000"));
    });
  }
}

TEST(NSKeyedUnarchiver, ArchivesThroughOtherTools) {
  NSKeyedUnarchiver xml(madeArchive("good/through_xml"));
  EXPECT_EQ(xml.decodeObjectOfClass<NSArray>("list")->count(), 2U);
  EXPECT_EQ(xml.decodeObjectForKey("nil"), nullptr);
  EXPECT_EQ(xml.decodeInt32ForKey("n"), 3);
  NSKeyedUnarchiver rewritten(madeArchive("good/rewritten"));
  const auto list = rewritten.decodeObjectOfClass<NSArray>("list");
  ASSERT_EQ(list->count(), 6U);
  EXPECT_TRUE(list->objectAtIndex(0)->isEqual(NSString("na\u00efve")));
  EXPECT_EQ(static_cast<const NSNumber&>(*list->objectAtIndex(2)).integerValue(), -1);
  const auto root = [](const char* name) {
    return NSKeyedUnarchiver::unarchiveObjectWithData(madeArchive(name));
  };
  EXPECT_EQ(root("good/without_root"), nullptr);
  EXPECT_EQ(root("good/first_element"), nullptr);
  EXPECT_TRUE(root("good/other_archiver")->isEqual(NSString("still read")));
}

TEST(NSKeyedUnarchiver, BytesAreViewsThatOutliveTheUnarchiver) {
  std::shared_ptr<NSData> view;
  std::span<const uint8_t> file;
  {
    const auto data = madeArchive("good/historic");
    file = data->bytes();
    NSKeyedUnarchiver c(data);
    view = c.decodeDataForKey("data");
  }
  EXPECT_GE(view->bytes().data(), file.data());
  EXPECT_LT(view->bytes().data(), file.data() + file.size());
  EXPECT_EQ(view->bytes()[0], 'x');
}

TEST(NSKeyedUnarchiver, BadArchives) {
  struct Case {
    const char* name;
    /// The exception, "nil", or the class of the root object.
    std::string outcome;
  };
  const std::string kNoArchive = NSInvalidArgumentException;
  const std::string kBroken = NSArchiverArchiveInconsistency;
  const std::string kInvalid = NSInvalidUnarchiveOperationException;
  const Case cases[] = {
      {"version_missing", kNoArchive},
      {"version_other", kNoArchive},
      {"version_text", kNoArchive},
      {"version_real", kNoArchive},
      {"top_level_array", kNoArchive},
      {"not_an_archive", kNoArchive},
      {"top_missing", kBroken},
      {"top_array", kBroken},
      {"objects_missing", kBroken},
      {"objects_dictionary", kBroken},
      {"objects_empty", kBroken},
      {"uid_out_of_range", kBroken},
      {"uid_far_out", kBroken},
      {"class_missing", kBroken},
      {"class_nil", kBroken},
      {"class_inline", kBroken},
      {"class_itself", kBroken},
      {"class_out_of_range", kBroken},
      {"class_string", kBroken},
      {"class_name_number", kBroken},
      {"classes_empty", "NSArray"},
      {"class_unknown", kInvalid},
      {"class_hints_wrong", kInvalid},
      {"class_record_as_object", kBroken},
      {"element_array", kBroken},
      {"element_uid", kBroken},
      {"list_text", "nil"},
      {"list_inline_text", "nil"},
      {"list_out_of_range", kBroken},
      {"keys_missing", "nil"},
      {"keys_nil", "nil"},
      {"string_number", "NSMutableString"},
      {"date_text", kInvalid},
      {"data_number", "NSMutableData"},
      {"number_text", "nil"},
      {"value_unknown", "nil"},
      {"value_special_text", kInvalid},
      {"url_nothing", "NSURL"},
      {"reference_loop", "nil"},
      {"reference_negative", kBroken},
      {"nested_255", "NSArray"},
      {"nested_300", kBroken},
      {"nested_60000", kBroken},
      {"built_upwards_60000", kBroken},
      {"aliases_200", "NSArray"},
      {"aliases_60000", kBroken},
      {"doubled_200", "NSArray"},
      {"unused_300000", "NSArray"},
      {"shared_list", kBroken},
  };
  for (const Case& c : cases) {
    std::shared_ptr<NSObject> root;
    std::string outcome = exceptionOf([&] {
      root = NSKeyedUnarchiver::unarchiveObjectWithData(madeArchive("bad/" + std::string(c.name)));
    });
    if (outcome.empty()) outcome = root == nullptr ? "nil" : root->className();
    // What can be read can be written, in the same bounds.
    NSKeyedArchiver::archivedDataWithRootObject(root);
    EXPECT_EQ(outcome, c.outcome) << c.name;
  }
}

TEST(NSKeyedUnarchiver, WhatIsNoArchiveAtAll) {
  const auto open = [](std::string_view bytes) {
    return exceptionOf([&] {
      NSKeyedUnarchiver c(
          NSData::dataWithBytes({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()}));
    });
  };
  EXPECT_EQ(exceptionOf([] { NSKeyedUnarchiver c(nullptr); }), NSInvalidArgumentException);
  for (const char* bytes : {"", "bplist00", "\x04\x0Btypedstream",
                            "<?xml version=\"1.0\"?><plist/>", "{ \"$version\" = 100000; }"}) {
    EXPECT_EQ(open(bytes), NSInvalidArgumentException) << bytes;
  }
}

TEST(NSKeyedUnarchiver, FailuresThatSomeoneCatches) {
  // An object that failed once fails again, at once, and the record that asked stays usable.
  int tries = 0;
  const SampleCoding coding([&](Sample&, NSCoder& c) {
    if (!c.containsValueForKey("broken")) return true;
    for (int i = 0; i < 3; ++i) {
      tries += exceptionOf([&] { c.decodeObjectForKey("broken"); }).empty() ? 0 : 1;
    }
    EXPECT_EQ(c.decodeInt32ForKey("after"), 9);
    return true;
  });
  const auto root = NSKeyedUnarchiver::unarchiveObjectWithData(madeArchive("bad/inside"));
  EXPECT_EQ(tries, 3);
  EXPECT_NE(root, nullptr);
}
