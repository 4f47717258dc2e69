#pragma once

#include "matrix3.h"
#include "object.h"

class Mtl;

// A node of the scene. Nodes belong to the host and live as long as the scene. World space is Z-up,
// right-handed, in system units; times are ticks. The scene root is a node without parent.
class INode {
 public:
  virtual const TCHAR* GetName() = 0;
  virtual INode* GetParentNode() = 0;
  virtual int IsRootNode() = 0;
  virtual int NumberOfChildren() = 0;
  virtual INode* GetChildNode(int i) = 0;

  virtual int IsHidden(DWORD flags = 0, BOOL forRendering = FALSE) = 0;
  virtual int IsFrozen() = 0;
  virtual int Selected() = 0;

  virtual const ObjectState& EvalWorldState(TimeValue t, BOOL evalHidden = TRUE) = 0;
  virtual Object* GetObjectRef() = 0;  // null on nodes that show nothing
  virtual Mtl* GetMtl() = 0;           // null when no material is assigned

  // World matrices. The object's own offset from its node's pivot is in the object matrices only;
  // world-space modifiers have their effect in the AfterWSM one only. The interval, where given,
  // receives the times for which the answer holds.
  virtual Matrix3 GetNodeTM(TimeValue t, Interval* valid = nullptr) = 0;
  virtual Matrix3 GetObjectTM(TimeValue t, Interval* valid = nullptr) = 0;
  virtual Matrix3 GetObjTMAfterWSM(TimeValue t, Interval* valid = nullptr) = 0;

 protected:
  virtual ~INode() = default;
};
