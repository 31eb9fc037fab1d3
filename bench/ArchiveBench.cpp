// Decoding an archive of 10,000 objects as a multiple of copying its bytes, what it allocates
// beyond them, and what asking for one key costs.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Ratio.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/GraphicsClasses.h"
#include "platform/graphics/color/NSColor.h"

namespace {

// Every block carries its size in front, so that freeing it can be counted.
constexpr size_t kHeader = alignof(std::max_align_t);
std::atomic<size_t> allocated;
std::atomic<size_t> peak;

void* countedAllocate(size_t size) {
  auto* block = static_cast<unsigned char*>(std::malloc(size + kHeader));
  if (block == nullptr) throw std::bad_alloc();
  std::memcpy(block, &size, sizeof size);
  const size_t now = allocated += size;
  for (size_t seen = peak; now > seen && !peak.compare_exchange_weak(seen, now);) {
  }
  return block + kHeader;
}

void countedFree(void* pointer) {
  if (pointer == nullptr) return;
  unsigned char* block = static_cast<unsigned char*>(pointer) - kHeader;
  size_t size = 0;
  std::memcpy(&size, block, sizeof size);
  allocated -= size;
  std::free(block);
}

}  // namespace

void* operator new(size_t size) {
  return countedAllocate(size);
}
void operator delete(void* pointer) noexcept {
  countedFree(pointer);
}
void operator delete(void* pointer, size_t) noexcept {
  countedFree(pointer);
}

namespace {

/// As many keys as a drawing object has, of the kinds that it has them in.
class Drawing : public NSObject {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }

  bool initWithCoder(NSCoder& coder) override {
    name_ = coder.decodeStringForKey("Name").value_or("");
    bounds_ = coder.decodeRectForKey("BoundsOfDrawing");
    color_ = coder.decodeObjectOfClass<NSColor>("StrokeColor");
    for (const std::string& key : kFlags) sum_ += coder.decodeBoolForKey(key) ? 1 : 0;
    for (const std::string& key : kAmounts)
      sum_ += static_cast<double>(coder.decodeFloatForKey(key));
    for (const std::string& key : kCounts) sum_ += coder.decodeInt32ForKey(key);
    // Keys are optional in half of the cases.
    for (const std::string& key : kAbsent) sum_ += coder.containsValueForKey(key) ? 1 : 0;
    return true;
  }

  void encodeWithCoder(NSCoder& coder) const override {
    coder.encodeString(name_, "Name");
    coder.encodeRect(bounds_, "BoundsOfDrawing");
    coder.encodeObject(color_, "StrokeColor");
    for (const std::string& key : kFlags) coder.encodeBool(true, key);
    for (const std::string& key : kAmounts) coder.encodeFloat(2.5F, key);
    for (const std::string& key : kCounts) coder.encodeInt32(7, key);
  }

  static std::vector<std::string> keys(const char* stem, int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) names.push_back(stem + std::to_string(i));
    return names;
  }

  inline static const std::vector<std::string> kFlags = keys("EnableSomething", 7);
  inline static const std::vector<std::string> kAmounts = keys("AmountOf", 6);
  inline static const std::vector<std::string> kCounts = keys("CountOfThings", 4);
  inline static const std::vector<std::string> kAbsent = keys("RarelyWritten", 20);

  std::string name_;
  NSRect bounds_;
  std::shared_ptr<NSColor> color_;
  double sum_ = 0;
};

const NSClass Drawing::kClass{"Drawing", &NSObject::kClass, NSAllocate<Drawing>};

/// 10,000 elements of "$objects": drawings, each with a name, a rectangle and a colour of its own,
/// and one picture of 4 MB in `pictures` of them.
std::shared_ptr<NSMutableData> makeArchive(int pictures) {
  static constexpr const NSClass* kClasses[] = {&Drawing::kClass};
  NSRegisterClasses(kClasses);
  registerGraphicsClasses();
  auto list = std::make_shared<NSMutableArray>();
  for (int i = 0; i < 2500; ++i) {
    auto drawing = std::make_shared<Drawing>();
    drawing->name_ = "Drawing " + std::to_string(i);
    drawing->bounds_ = NSMakeRect(i, 2 * i, 100.25, 50.5);
    drawing->color_ = NSColor::colorWithCalibratedRed(i / 2500.0, 0.5, 0.25, 1);
    list->addObject(drawing);
  }
  for (int i = 0; i < pictures; ++i) {
    list->addObject(NSData::dataWithVector(std::vector<uint8_t>(4 << 20, static_cast<uint8_t>(i))));
  }
  return NSKeyedArchiver::archivedDataWithRootObject(list);
}

void decode(benchmark::State& state) {
  const auto data = makeArchive(static_cast<int>(state.range(0)));
  const double copy = memcpySeconds(data->length());
  const size_t before = allocated;
  peak = before;
  runAsMultiple(state, "times memcpy", copy, [&] {
    benchmark::DoNotOptimize(NSKeyedUnarchiver::unarchiveObjectWithData(data));
  });
  state.counters["file KB"] = static_cast<double>(data->length()) / 1024;
  state.counters["peak beyond file KB"] = static_cast<double>(peak - before) / 1024;
  state.counters["peak / file"] =
      static_cast<double>(peak - before) / static_cast<double>(data->length());
}
BENCHMARK(decode)->ArgName("pictures")->Arg(0)->Arg(16)->Unit(benchmark::kMillisecond);

void encode(benchmark::State& state) {
  const auto root = NSKeyedUnarchiver::unarchiveObjectWithData(makeArchive(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(NSKeyedArchiver::archivedDataWithRootObject(root));
  }
}
BENCHMARK(encode)->Unit(benchmark::kMillisecond);

/// One key out of 20, there or not.
void lookUp(benchmark::State& state) {
  auto data = std::make_shared<NSMutableData>();
  NSKeyedArchiver archiver(data);
  Drawing().encodeWithCoder(archiver);
  archiver.finishEncoding();
  NSKeyedUnarchiver coder(data);
  const auto& keys = state.range(0) != 0 ? Drawing::kFlags : Drawing::kAbsent;
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(coder.decodeBoolForKey(keys[i]));
    i = i + 1 < keys.size() ? i + 1 : 0;
  }
}
BENCHMARK(lookUp)->ArgName("present")->Arg(1)->Arg(0);

}  // namespace

BENCHMARK_MAIN();
