#include "inspect/Findings.h"

#include <algorithm>

#include "inspect/Text.h"

namespace orv::inspect {

std::string LineOf(const Finding& finding) {
  const Place& place = finding.place;
  std::string line = place.path;
  if (place.chunk >= 0 && !place.path.starts_with("QIRF/CHNK")) {
    line += ", chunk " + std::to_string(place.chunk);
  }
  if (!place.subject.empty()) line += " (" + place.subject + ")";
  line += (line.empty() ? "" : ": ") + finding.text;
  if (finding.count > 1) line += " (" + std::to_string(finding.count) + " such)";
  return Printable(line) + " [" + InfoOf(finding.code).name + "]";
}

size_t CountOf(const Findings& findings, Level level) {
  return static_cast<size_t>(std::count_if(
      findings.begin(), findings.end(),
      [level](const Finding& finding) { return InfoOf(finding.code).level == level; }));
}

}  // namespace orv::inspect
