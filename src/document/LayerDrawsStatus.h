#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "draw/core/DrawBase.h"

class DrawGroup;
class DrawImage2;

/// The places of all draws of a document, to be taken up again later: the top-level list, its
/// background draw, and what each group held. Owns the draws; their attributes are not kept.
struct LayerDrawsStatus {
  DrawArray draws;
  std::shared_ptr<DrawImage2> background;
  std::vector<std::pair<std::shared_ptr<DrawGroup>, DrawArray>> groups;
};
