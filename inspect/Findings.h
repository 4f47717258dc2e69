#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "inspect/CheckCodes.h"

namespace orv::inspect {

// Where in a file something was found.
struct Place {
  std::string path;          // of the chunk of the container, as "QIRF/CHNK 3/GEOM"
  int64_t chunk = -1;        // number of the mesh chunk that it is about; -1: none
  std::string subject = {};  // the material, bone, texture or attachment point; "" for none
};

struct Finding {
  Code code;
  Place place;
  std::string text;  // one sentence, without its full stop; of several like cases the first
  size_t count = 1;  // of like cases in this place
};

using Findings = std::vector<Finding>;

// "QIRF/CHNK 3/GEOM (rail.m.onetex): triangle 7 has no area (2 such) [zero-area-triangle]".
std::string LineOf(const Finding& finding);

size_t CountOf(const Findings& findings, Level level);

// Folds like cases in one place into one finding, which is added at the end of the tally's life.
class Tally {
 public:
  Tally(Findings& findings, Code code, Place place)
      : m_findings(findings), m_finding{code, std::move(place), "", 0} {}
  ~Tally() {
    if (m_finding.count > 0) m_findings.push_back(std::move(m_finding));
  }
  Tally(const Tally&) = delete;

  // text: makes the sentence; called for the first case only.
  template <typename MakeText>
  void Add(MakeText text) {
    if (m_finding.count++ == 0) m_finding.text = text();
  }
  size_t Count() const { return m_finding.count; }

 private:
  Findings& m_findings;
  Finding m_finding;
};

}  // namespace orv::inspect
