#include "shell/ClassDescriptor.h"

#include "platform/Platform.h"
#include "shell/OrvExporter.h"
#include "shell/ResourceText.h"

namespace orv {

int ClassDescriptor::IsPublic() { return 1; }

void* ClassDescriptor::Create(BOOL /*loading*/) { return new OrvExporter; }

const TCHAR* ClassDescriptor::ClassName() { return ResourceText(platform::kStringClassName); }

SClass_ID ClassDescriptor::SuperClassID() { return SCENE_EXPORT_CLASS_ID; }

Class_ID ClassDescriptor::ClassID() { return kExporterClassId; }

const TCHAR* ClassDescriptor::Category() { return ""; }

const TCHAR* ClassDescriptor::InternalName() { return "OrvExporter"; }

HINSTANCE ClassDescriptor::HInstance() {
  return static_cast<HINSTANCE>(platform::ModuleInstance());
}

}  // namespace orv
