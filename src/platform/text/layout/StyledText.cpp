#include "platform/text/layout/StyledText.h"

#include <algorithm>

size_t StyledText::runAt(size_t unit) const {
  const auto found = std::upper_bound(runs.begin(), runs.end(), unit,
                                      [](size_t u, const StyleRun& run) { return u < run.end; });
  return static_cast<size_t>(std::min(found, runs.end() - 1) - runs.begin());
}

const TextStyle& StyledText::styleAt(size_t unit) const {
  return runs.empty() ? styles.front() : styles[runs[runAt(unit)].style];
}
