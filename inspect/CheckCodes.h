#pragma once

#include <span>

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

}  // namespace orv::inspect
