#include "platform/text/fonts/ClusterForms.h"

#include "platform/text/TextCharacters.h"
#include "platform/text/TextLibraries.h"

namespace {

std::u32string drawnCharacters(std::u16string_view cluster, const TextLibraries& libraries) {
  std::u32string characters;
  for (size_t i = 0; i < cluster.size();) {
    const auto [c, units] = characterAt(cluster, i);
    if (!libraries.isDefaultIgnorable(c)) characters += c;
    i += units;
  }
  return characters;
}

}  // namespace

ClusterForms::ClusterForms(std::u16string_view cluster) {
  const TextLibraries* libraries = textLibraries();
  if (libraries == nullptr || cluster.empty()) {
    forms_.emplace_back();
    return;
  }
  const auto [first, units] = characterAt(cluster, 0);
  if (units == cluster.size() && !libraries->hasCanonicalDecomposition(first)) {
    forms_.push_back(drawnCharacters(cluster, *libraries));
    return;
  }
  const auto add = [&](std::u16string_view form) {
    std::u32string characters = drawnCharacters(form, *libraries);
    if (forms_.empty() || characters != forms_.front()) forms_.push_back(std::move(characters));
  };
  add(libraries->normalized(cluster, Normalization::composed));
  add(libraries->normalized(cluster, Normalization::decomposed));
  add(cluster);
}

ClusterForms ClusterForms::base() const {
  ClusterForms base;
  base.forms_.push_back(composed().substr(0, 1));
  return base;
}
