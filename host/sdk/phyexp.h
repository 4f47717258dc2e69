// Reading the bones and weights of a Physique modifier. All interfaces belong to the modifier.
#pragma once

#include "inode.h"

constexpr ULONG PHYSIQUE_CLASS_ID_A = 0x100;
constexpr ULONG PHYSIQUE_CLASS_ID_B = 0;

// Modifier::GetInterface of this id answers an IPhysiqueExport.
constexpr ULONG I_PHYINTERFACE = 0x100100;

// IPhyVertexExport::GetVertexType.
constexpr int RIGID_TYPE = 1;
constexpr int BLENDED_TYPE = 4;
constexpr int RIGID_BLENDED_TYPE = RIGID_TYPE | BLENDED_TYPE;

// The type says which of the derived interfaces it is.
class IPhyVertexExport {
 public:
  virtual int GetVertexType() = 0;

 protected:
  virtual ~IPhyVertexExport() = default;
};

// RIGID_TYPE: the vertex follows one bone.
class IPhyRigidVertex : public IPhyVertexExport {
 public:
  virtual INode* GetNode() = 0;
};

// RIGID_BLENDED_TYPE: it follows several. A bone can be listed more than once.
class IPhyBlendedRigidVertex : public IPhyVertexExport {
 public:
  virtual int GetNumberNodes() = 0;
  virtual INode* GetNode(int i) = 0;
  virtual float GetWeight(int i) = 0;
};

// One node's use of the modifier; its vertices are those of the node's mesh.
class IPhyContextExport {
 public:
  virtual void ConvertToRigid(BOOL convert = TRUE) = 0;
  virtual int GetNumberVertices() = 0;
  // Valid until the next call.
  virtual IPhyVertexExport* GetVertexInterface(int i) = 0;

 protected:
  virtual ~IPhyContextExport() = default;
};

class IPhysiqueExport {
 public:
  // Null when the modifier is not on that node.
  virtual IPhyContextExport* GetContextInterface(INode* node) = 0;

 protected:
  virtual ~IPhysiqueExport() = default;
};
