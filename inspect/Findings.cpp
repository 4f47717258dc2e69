#include "inspect/Findings.h"

#include <algorithm>
#include <cassert>

#include "inspect/Text.h"

namespace orv::inspect {

namespace {

using enum Level;
using enum Aspect;

constexpr CodeInfo kCodes[] = {
    {Code::TagWrong, "tag-wrong", Error, Structure},
    {Code::VersionUnknown, "version-unknown", Error, Structure},
    {Code::CutOff, "cut-off", Error, Structure},
    {Code::CountTooLarge, "count-too-large", Error, Structure},
    {Code::IndexRange, "index-range", Error, Structure},
    {Code::BytesLeftOver, "bytes-left-over", Error, Structure},
    {Code::UnknownPart, "unknown-part", Error, Structure},
    {Code::NotFinite, "not-finite", Error, Structure},
    {Code::RotationNotUnit, "rotation-not-unit", Error, Structure},
    {Code::BoneTwice, "bone-twice", Warning, Structure},
    {Code::MapCount, "map-count", Note, Structure},
    {Code::ChunkNumber, "chunk-number", Error, Structure},
    {Code::CountMismatch, "count-mismatch", Error, Structure},
    {Code::TooManyVertices, "too-many-vertices", Error, Structure},
    {Code::NormalNotUnit, "normal-not-unit", Error, Structure},
    {Code::FaceNormalWrong, "face-normal-wrong", Error, Structure},
    {Code::TangentNotUnit, "tangent-not-unit", Error, Structure},
    {Code::TangentsMissing, "tangents-missing", Error, Structure},
    {Code::TangentsUnexpected, "tangents-unexpected", Warning, Structure},
    {Code::AreaMismatch, "area-mismatch", Error, Structure},
    {Code::BoxTooSmall, "box-too-small", Error, Structure},
    {Code::BoxTooLarge, "box-too-large", Warning, Structure},
    {Code::MaximumTooSmall, "maximum-too-small", Error, Structure},
    {Code::MaximumTooLarge, "maximum-too-large", Warning, Structure},
    {Code::WeightVertex, "weight-vertex", Error, Structure},
    {Code::ChunkBoneMissing, "chunk-bone-missing", Error, Structure},
    {Code::NeighbourRange, "neighbour-range", Error, Structure},
    {Code::IndexOrder, "index-order", Note, Structure},
    {Code::RepeatedTriangle, "repeated-triangle", Note, Structure},
    {Code::UnusedVertex, "unused-vertex", Note, Structure},
    {Code::MaterialTypeMissing, "material-type-missing", Warning, Content},
    {Code::MaterialTypeUnknown, "material-type-unknown", Warning, Content},
    {Code::MaterialTypeChosen, "material-type-chosen", Note, Content},
    {Code::MapMissing, "map-missing", Note, Content},
    {Code::MapChannel, "map-channel", Warning, Content},
    {Code::OpacityRange, "opacity-range", Warning, Content},
    {Code::SideFileMissing, "side-file-missing", Warning, Content},
    {Code::SideFileIncomplete, "side-file-incomplete", Warning, Content},
    {Code::TextureMissing, "texture-missing", Warning, Content},
    {Code::TooManyBones, "too-many-bones", Error, Content},
    {Code::ChunkTooLarge, "chunk-too-large", Warning, Content},
    {Code::EmptyChunk, "empty-chunk", Note, Content},
    {Code::WeightRange, "weight-range", Warning, Content},
    {Code::WeightSum, "weight-sum", Warning, Content},
    {Code::VertexWithoutWeight, "vertex-without-weight", Warning, Content},
    {Code::ZeroAreaTriangle, "zero-area-triangle", Warning, Content},
    {Code::TexCoordFar, "texcoord-far", Warning, Content},
    {Code::SizeLarge, "size-large", Warning, Content},
    {Code::SizeSmall, "size-small", Note, Content},
    {Code::AttachmentTwice, "attachment-twice", Warning, Content},
    {Code::BoneNotInMesh, "bone-not-in-mesh", Warning, Content},
    {Code::BoneNotAnimated, "bone-not-animated", Warning, Content},
    {Code::FrameRateZero, "frame-rate-zero", Error, Structure},
    {Code::MasterScale, "master-scale", Error, Structure},
    {Code::NoFrames, "no-frames", Warning, Content},
    {Code::EventType, "event-type", Error, Structure},
    {Code::EventFrame, "event-frame", Error, Structure},
};

}  // namespace

const CodeInfo& InfoOf(Code code) {
  const CodeInfo& info = kCodes[static_cast<size_t>(code)];
  assert(info.code == code);
  return info;
}

std::span<const CodeInfo> AllCodes() { return kCodes; }

const char* NameOf(Level level) {
  constexpr const char* kNames[] = {"note", "warning", "error"};
  return kNames[static_cast<size_t>(level)];
}

const char* NameOf(Aspect aspect) { return aspect == Structure ? "structure" : "content"; }

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
