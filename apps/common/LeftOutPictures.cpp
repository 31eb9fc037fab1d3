#include "common/LeftOutPictures.h"

#include "common/ExitStatus.h"
#include "document/DrawGroup.h"

namespace {

void findIn(PaintManager& document, const DrawArray& draws, std::vector<LeftOutPicture>& found) {
  for (const auto& draw : draws) {
    if (!draw->visible()) continue;
    if (const auto* group = dynamic_cast<const DrawGroup*>(draw.get())) {
      findIn(document, group->draws(), found);
      continue;
    }
    const PictureFailure failure = document.pictureFailure(*draw);
    if (failure == PictureFailure::none) continue;
    found.push_back({draw->layerTitle().value_or(""), draw->pictureKind(), describe(failure)});
  }
}

std::string textOf(const LeftOutPicture& picture) {
  const std::string reason = picture.kind + ": " + picture.reason;
  return picture.title.empty() ? reason : "\"" + printable(picture.title) + "\" (" + reason + ")";
}

}  // namespace

std::vector<LeftOutPicture> findLeftOutPictures(PaintManager& document) {
  std::vector<LeftOutPicture> found;
  findIn(document, document.allDraws(), found);
  return found;
}

std::string leftOutText(const std::vector<LeftOutPicture>& pictures) {
  if (pictures.empty()) return {};
  constexpr size_t kMostNamed = 5;
  const std::string count = std::to_string(pictures.size());
  std::string text = count + (pictures.size() == 1 ? " picture" : " pictures") + " left out: ";
  for (size_t i = 0; i < pictures.size() && i < kMostNamed; ++i) {
    text += (i == 0 ? "" : ", ") + textOf(pictures[i]);
  }
  return pictures.size() > kMostNamed ? text + ", and others" : text;
}
