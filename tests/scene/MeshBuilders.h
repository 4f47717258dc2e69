#pragma once

#include <string>
#include <vector>

#include "scene/GenericMesh.h"

namespace orv {

inline GenericMaterial Material(std::string name, int32_t tag = 0) {
  GenericMaterial material;
  material.name = std::move(name);
  material.sourceSubMaterial = tag;  // no merge looks at it
  material.used = true;
  return material;
}

inline MaterialMap Map(int32_t channel, std::string fileName, float amount = 1) {
  MaterialMap map;
  map.channel = channel;
  map.fileName = std::move(fileName);
  map.amount = amount;
  map.tileS = map.tileT = true;
  return map;
}

// A face whose corner k names the same row of all three tables.
inline void AddFace(GenericMesh& mesh, int32_t material, const std::vector<uint32_t>& rows) {
  std::vector<FaceCorner> corners;
  for (const uint32_t row : rows) corners.push_back({row, row, row});
  mesh.m_faces.Add(material, corners);
}

// Rows (0,0,0) (1,0,0) (1,1,0) (0,1,0), normals up, texture coordinates as positions.
inline GenericMesh Quad(std::vector<GenericMaterial> materials) {
  GenericMesh mesh;
  mesh.m_positions = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  mesh.m_normals.assign(4, Vec3{0, 0, 1});
  mesh.m_texCoords = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  mesh.m_materials = std::move(materials);
  AddFace(mesh, 0, {0, 1, 2, 3});
  return mesh;
}

// "material: row row row", a row as position/normal/texture coordinate where they differ.
inline std::vector<std::string> Faces(const GenericMesh& mesh) {
  std::vector<std::string> lines;
  for (size_t i = 0; i < mesh.m_faces.size(); ++i) {
    const GenericFace face = mesh.m_faces[i];
    std::string line = std::to_string(face.material) + ":";
    for (const FaceCorner& c : face.corners) {
      line += " " + std::to_string(c.position);
      if (c.normal == c.position && c.texCoord == c.position) continue;
      line += "/" + std::to_string(c.normal) + "/" + std::to_string(c.texCoord);
    }
    lines.push_back(line);
  }
  return lines;
}

inline std::vector<int32_t> Tags(const std::vector<GenericMaterial>& materials) {
  std::vector<int32_t> tags;
  for (const GenericMaterial& material : materials) tags.push_back(material.sourceSubMaterial);
  return tags;
}

}  // namespace orv
