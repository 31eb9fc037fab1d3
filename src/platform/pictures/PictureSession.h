#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/foundation/Limits.h"
#include "platform/foundation/PaintExport.h"
#include "platform/graphics/codecs/PictureCache.h"
#include "platform/pictures/PictureFailure.h"

/// What draws SVG pictures: the system's renderer (librsvg) where it is installed, or the engine of
/// this library.
enum class SVGEngine : uint8_t { system, builtIn };

/// What the pictures of a document that a program of their own draws may use.
struct PictureLimits {
  /// Processor time of one picture.
  std::chrono::milliseconds processorTime{limits::kPictureProcessorMilliseconds};
  /// Memory of one picture, besides its data and its pixels.
  uint64_t memoryBytes = limits::kPictureMemoryBytes;
  /// Wall time after which a picture is given up that uses no processor time either. Waiting for
  /// other pictures does not count.
  std::chrono::milliseconds wallTime{limits::kPictureWallMilliseconds};
  /// Processor time of all pictures of one composition; a picture that ended its helper counts with
  /// the time that passed.
  std::chrono::milliseconds compositionTime{limits::kCompositionPictureMilliseconds};
};

/// Tells where paint-picture-helper is, for programs that are not installed beside it; empty to
/// have it found again. Counts for helpers that are started from then on, by any thread.
PAINT_API void setPictureHelperPath(const std::string& path);

/// A picture that a composition left out, in words for people. Titles are as the file has them.
struct LeftOutPicture {
  std::string title;   ///< of the draw that shows it; may be empty
  std::string kind;    ///< such as "PDF page"
  std::string reason;  ///< a clause
};

/// What the pictures of one document share while they are drawn: who draws SVG, how much time is
/// left, and what was left out. A document makes its session current on the thread that draws.
class PictureSession {
 public:
  /// The session of what the calling thread draws; null outside of documents, where every picture
  /// has the default limits.
  static PictureSession* current();

  SVGEngine engine() const { return engine_; }
  void setEngine(SVGEngine engine) { engine_ = engine; }
  const PictureLimits& limits() const { return limits_; }
  void setLimits(const PictureLimits& limits) { limits_ = limits; }

  /// Starts a composition: nothing spent, nothing left out.
  void begin();
  /// What is left of the time of all pictures.
  std::chrono::microseconds timeLeft() const { return limits_.compositionTime - spent_; }
  void spend(std::chrono::microseconds time) { spent_ += time; }

  /// Why no program that draws pictures could be had; asking again would cost its time again.
  PictureFailure helperFailure() const { return helperFailure_; }
  void setHelperFailure(PictureFailure failure) { helperFailure_ = failure; }

  /// Notes once for each `draw` that its picture is left out.
  void leaveOut(const void* draw, LeftOutPicture picture);
  const std::vector<LeftOutPicture>& leftOut() const { return leftOut_; }

  /// What was made of the pictures and is needed again.
  PictureCache& cache() { return cache_; }

 private:
  SVGEngine engine_ = SVGEngine::system;
  PictureLimits limits_;
  std::chrono::microseconds spent_{0};
  PictureFailure helperFailure_ = PictureFailure::none;
  std::vector<LeftOutPicture> leftOut_;
  std::unordered_set<const void*> leftOutDraws_;
  PictureCache cache_;
};

/// Makes a session and its cache current for the length of a scope.
class PictureSessionScope {
 public:
  explicit PictureSessionScope(PictureSession& session);
  PictureSessionScope(const PictureSessionScope&) = delete;
  PictureSessionScope& operator=(const PictureSessionScope&) = delete;
  ~PictureSessionScope();

 private:
  PictureSession* outer_;
  PictureCacheScope cache_;
};
