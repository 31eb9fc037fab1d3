#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A user-perceived character in the forms in which a face may have its glyphs: as written, with
/// letters and marks put together, and with them taken apart. Shaping turns one into the other, so
/// a face that has any of them draws the cluster. Characters that nothing is drawn for are left
/// out.
class ClusterForms {
 public:
  explicit ClusterForms(std::u16string_view cluster);
  /// The first character alone, for when no face has the whole.
  ClusterForms base() const;

  /// Whether the predicate holds for all characters of one of the forms.
  template <class Has>
  bool coveredBy(Has has) const {
    for (const std::u32string& form : forms_) {
      bool all = true;
      for (const char32_t c : form) all = all && has(c);
      if (all) return true;
    }
    return false;
  }

  /// The same for canonically equal clusters.
  const std::u32string& composed() const { return forms_.front(); }
  bool empty() const { return forms_.front().empty(); }

 private:
  ClusterForms() = default;

  std::vector<std::u32string> forms_;  ///< the composed one first; never empty
};
