#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orv::inspect {

enum class Level { Note, Warning, Error };

// Structure: the file does not keep to its format. Content: it does, but hardly as its author
// meant it.
enum class Aspect { Structure, Content };

enum class Code {
  // Any file
  TagWrong,
  VersionUnknown,
  CutOff,
  CountTooLarge,
  IndexRange,
  BytesLeftOver,
  UnknownPart,
  NotFinite,
  RotationNotUnit,
  BoneTwice,
  // The structure of a mesh
  MapCount,
  ChunkNumber,
  CountMismatch,
  TooManyVertices,
  NormalNotUnit,
  FaceNormalWrong,
  TangentNotUnit,
  TangentsMissing,
  TangentsUnexpected,
  AreaMismatch,
  BoxTooSmall,
  BoxTooLarge,
  MaximumTooSmall,
  MaximumTooLarge,
  WeightVertex,
  ChunkBoneMissing,
  NeighbourRange,
  IndexOrder,
  RepeatedTriangle,
  UnusedVertex,
  // The content of a mesh
  MaterialTypeMissing,
  MaterialTypeUnknown,
  MaterialTypeChosen,
  MapMissing,
  MapChannel,
  OpacityRange,
  SideFileMissing,
  SideFileIncomplete,
  TextureMissing,
  TooManyBones,
  ChunkTooLarge,
  EmptyChunk,
  WeightRange,
  WeightSum,
  VertexWithoutWeight,
  ZeroAreaTriangle,
  TexCoordFar,
  SizeLarge,
  SizeSmall,
  AttachmentTwice,
  BoneNotInMesh,
  BoneNotAnimated,
  // An animation
  FrameRateZero,
  MasterScale,
  NoFrames,
  EventType,
  EventFrame,
};

struct CodeInfo {
  Code code;
  const char* name;  // stable; the same in text, JSON and documentation
  Level level;
  Aspect aspect;
};

const CodeInfo& InfoOf(Code code);
std::span<const CodeInfo> AllCodes();  // in the order of the enumeration
const char* NameOf(Level level);       // "note", "warning", "error"
const char* NameOf(Aspect aspect);     // "structure", "content"

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
