#include <cmath>
#include <iterator>
#include <unordered_set>

#include "inspect/Checks.h"
#include "inspect/Text.h"
#include "platform/ExString.h"

namespace orv::inspect {

namespace {

constexpr size_t kMaxNamed = 5;  // bones in one sentence

void CheckHeader(const AnimationFile& file, Findings& findings) {
  if (file.frameRate == 0) {
    findings.push_back({Code::FrameRateZero, {"QIRF/INFO"}, "the frame rate is 0"});
  }
  if (!(file.masterScale > 0) || !std::isfinite(file.masterScale)) {
    findings.push_back({Code::MasterScale,
                        {"QIRF/INFO"},
                        "the master scale is " + Number(file.masterScale) +
                            ", no positive number of metres per unit"});
  }
}

void CheckEvents(const AnimationFile& file, Findings& findings) {
  Tally types(findings, Code::EventType, {"QIRF/EVNT"});
  Tally frames(findings, Code::EventFrame, {"QIRF/EVNT"});
  for (const AnimationEvent& event : file.events) {
    if (event.type >= std::size(kEventKeywords)) {
      types.Add([&] {
        return "the event " + event.name + " is of the unknown type " + std::to_string(event.type);
      });
    }
    if (event.frame < 0 || static_cast<uint32_t>(event.frame) >= file.frameCount) {
      frames.Add([&] {
        return "the event " + event.name + " is on frame " + std::to_string(event.frame) + " of " +
               std::to_string(file.frameCount);
      });
    }
  }
}

void CheckPoses(const AnimationFile& file, Findings& findings) {
  Tally nonFinite(findings, Code::NotFinite, {"QIRF/FRAM"});
  Tally notUnit(findings, Code::RotationNotUnit, {"QIRF/FRAM"});
  for (size_t i = 0; i < file.poses.size(); ++i) {
    const BonePose& pose = file.poses[i];
    const auto where = [&] {
      return " of bone " + file.bones[i % file.bones.size()].name + " in frame " +
             std::to_string(i / file.bones.size());
    };
    if (!IsFinite(pose)) {
      nonFinite.Add([&] { return "the place" + where() + " is not a finite number"; });
    } else if (!IsUnit(pose.rotation)) {
      notUnit.Add([&] {
        return "the rotation" + where() + " is " + Number(Length(pose.rotation)) +
               " long instead of 1";
      });
    }
  }
}

// Names in lower case, to compare by.
class BoneNames {
 public:
  void Add(const std::string& name) {
    if (m_known.insert(LowerCase(name)).second) m_names.push_back(name);
  }
  bool IsEmpty() const { return m_names.empty(); }

  std::vector<std::string> Without(const BoneNames& other) const {
    std::vector<std::string> rest;
    for (const std::string& name : m_names) {
      if (!other.m_known.contains(LowerCase(name))) rest.push_back(name);
    }
    return rest;
  }

 private:
  std::vector<std::string> m_names;
  std::unordered_set<std::string> m_known;
};

BoneNames NamesOf(const IndexedMeshFile& file) {
  BoneNames names;
  for (const BoneNode& bone : file.bones) names.Add(bone.name);
  for (const auto& influence : file.mesh.influences) {
    for (const auto& bone : influence->m_bones) names.Add(bone->m_name);
  }
  return names;
}

BoneNames NamesOf(const AnimationFile& file) {
  BoneNames names;
  for (const BoneNode& bone : file.bones) names.Add(bone.name);
  return names;
}

std::string Listed(const std::vector<std::string>& names) {
  std::string list;
  for (size_t i = 0; i < names.size() && i < kMaxNamed; ++i) {
    list += (i > 0 ? ", " : "") + names[i];
  }
  if (names.size() > kMaxNamed)
    list += " and " + std::to_string(names.size() - kMaxNamed) + " more";
  return list;
}

void AddBones(Code code, const std::vector<std::string>& names, const Place& place,
              const std::string& text, Findings& findings) {
  if (names.empty()) return;
  findings.push_back({code, place, text + Listed(names), names.size()});
}

}  // namespace

void CheckStructure(const AnimationFile& file, Findings& findings) {
  CheckRemarks(file.remarks, findings);
  CheckHeader(file, findings);
  CheckEvents(file, findings);
  CheckBoneNames(file.bones, findings);
  CheckPoses(file, findings);
}

void CheckContent(const AnimationFile& file, Findings& findings) {
  if (file.frameCount > 0) return;
  findings.push_back({Code::NoFrames, {"QIRF/INFO"}, "the animation has no frames"});
}

void CheckBones(const IndexedMeshFile& mesh, const AnimationFile& animation,
                const std::string& animationName, Findings& findings) {
  const BoneNames ofMesh = NamesOf(mesh);
  const BoneNames ofAnimation = NamesOf(animation);
  const Place place{"QIRF", -1, animationName};
  if (ofMesh.IsEmpty()) {
    findings.push_back(
        {Code::BoneNotInMesh, place, "the mesh has no bones, so the animation moves nothing"});
    return;
  }
  AddBones(Code::BoneNotInMesh, ofAnimation.Without(ofMesh), place,
           "the mesh lacks bones of the animation: ", findings);
  AddBones(Code::BoneNotAnimated, ofMesh.Without(ofAnimation), place,
           "the animation lacks bones of the mesh: ", findings);
}

}  // namespace orv::inspect
