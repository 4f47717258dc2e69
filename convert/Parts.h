#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "convert/Convert.h"
#include "convert/Pose.h"
#include "formats/SideFiles.h"

// What Convert puts together.
namespace orv::convert {

// A bone of the model, the animation or both. The bones of the model come first, in its order.
struct SceneBone {
  std::string name;
  int32_t parent = -1;  // number of the bone above it; -1: none. Can come later in the list
  Pose rest;            // in the world at time 0, as the model has it; never mirrored
  int32_t track = -1;   // the animation's bone; -1: it is not animated. Its parent is animated too
};

// metresPerUnit: of the positions of a rigid model's bones.
std::vector<SceneBone> RigidBones(const IndexedMeshFile& file, double metresPerUnit,
                                  Messages& messages);

// The distinct bones of a skin in the order of first mention, names compared without case. The
// animation, if any, places bones that stand below something that the model lacks.
std::vector<SceneBone> SkinBones(const IndexedMesh& mesh, const AnimationFile* animation,
                                 double metresPerUnit, Messages& messages);

// Finds each bone's track by its name, without case; several of one name in their order. Adds the
// bones that only the animation has. The tree is the animation's where the two differ.
void JoinAnimation(const AnimationFile& animation, double metresPerUnit,
                   std::vector<SceneBone>& bones, Messages& messages);

// Adds the animation; node i of the document is bone i. Nothing is added without frames.
void AddAnimation(GlbDocument& document, const AnimationFile& animation, double metresPerUnit,
                  const std::vector<SceneBone>& bones, Messages& messages);

struct JointWeight {
  uint16_t joint = 0;
  float weight = 0;
};

// For each vertex of a chunk its joints, the strongest first, no joint twice, weights that sum to
// 1. Empty when no vertex of the chunk follows a bone.
using VertexJoints = std::vector<std::vector<JointWeight>>;

// Weighs the vertices of the chunks, one after the other.
class SkinWeights {
 public:
  // joints: of the bones by name in lower case. stillJoint: for vertices that follow no bone.
  SkinWeights(std::unordered_map<std::string, size_t> joints, uint16_t stillJoint)
      : m_joints(std::move(joints)), m_stillJoint(stillJoint) {}

  VertexJoints Of(const IndexedMesh& mesh, size_t chunk, Messages& messages);
  bool NeedsStillJoint() const { return m_needsStillJoint; }

 private:
  std::unordered_map<std::string, size_t> m_joints;
  uint16_t m_stillJoint;
  bool m_needsStillJoint = false;
};

// A chunk as a primitive of a mesh, its material left to be set. Nothing, with a message, for a
// chunk without triangles. joints: empty for a chunk that follows no bones.
std::optional<Json> AddPrimitive(GlbDocument& document, const IndexedMesh::Chunk& chunk,
                                 size_t number, const VertexJoints& joints, Messages& messages);

// A texture of the document.
struct Texture {
  size_t number = 0;
  bool hasAlpha = false;  // the alpha of the picture counts
};

// Finds textures beside a model, whatever the case of their letters, and puts them into a document:
// each picture once.
class Textures {
 public:
  Textures(const std::string& folder, GlbDocument& document, Messages& messages);

  // name: as a material's map has it. Nothing, with a message, for what is missing or unreadable.
  std::optional<Texture> Find(const std::string& name);

 private:
  std::optional<Texture> Make(const std::string& name);
  std::optional<SideFile> FindSideFile(const std::string& name);
  std::optional<size_t> ImageOf(const SideFile& sideFile);
  std::optional<std::string> ReadBeside(const std::string& name);
  size_t SamplerOf(const SideFile& sideFile);

  ModelFolder m_folder;
  GlbDocument& m_document;  // not owned
  Messages& m_messages;     // not owned
  std::map<std::string, std::optional<Texture>> m_made;
  std::map<std::pair<std::string, std::string>, std::optional<size_t>> m_images;
  std::map<std::pair<bool, bool>, size_t> m_samplers;
};

// The material as glTF has it; what glTF has no place for is kept under "extras".
Json MaterialOf(const GenericMaterial& material, Textures& textures, Messages& messages);

// A picture as a file's bytes.
struct Picture {
  std::string bytes;
  const char* mimeType = "";
};

// PNG and JPEG as they are; what else the picture library reads, as PNG. name: tells the kind of
// those that have no signature. Nothing for what it cannot read. Throws std::runtime_error, with
// the system's words, when the library is needed and cannot be opened.
std::optional<Picture> PictureFrom(const std::string& bytes, const std::string& name);

// The colours of one picture with another one's alpha, or with its brightness when it has none; it
// needs the library always.
std::optional<Picture> WithAlphaOf(const std::string& bytes, const std::string& name,
                                   const std::string& alphaBytes, const std::string& alphaName);

}  // namespace orv::convert
