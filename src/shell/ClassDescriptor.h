#pragma once

#include "iparamb2.h"
#include "max.h"

namespace orv {

inline const Class_ID kExporterClassId(0x77B61FB5, 0x007429F1);

// What the host learns of the exporter before it makes one.
class ClassDescriptor : public ClassDesc2 {
 public:
  int IsPublic() override;
  void* Create(BOOL loading) override;
  const TCHAR* ClassName() override;
  SClass_ID SuperClassID() override;
  Class_ID ClassID() override;
  const TCHAR* Category() override;
  const TCHAR* InternalName() override;
  HINSTANCE HInstance() override;
};

}  // namespace orv
