#include "Suggest.h"

#include <algorithm>
#include <numeric>

#include "platform/ExString.h"

namespace orv::cli {
namespace {

// Levenshtein distance, one row at a time.
size_t EditDistance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[b.size()];
}

}  // namespace

std::string DidYouMean(const std::string& word, const std::vector<std::string>& candidates) {
  const std::string lowered = LowerCase(word);
  size_t best = std::max<size_t>(2, word.size() / 2) + 1;
  const std::string* closest = nullptr;
  for (const std::string& candidate : candidates) {
    const size_t distance = EditDistance(lowered, LowerCase(candidate));
    if (distance >= best) continue;
    best = distance;
    closest = &candidate;
  }
  return closest ? " Did you mean '" + *closest + "'?" : "";
}

}  // namespace orv::cli
