#include "shell/OrvExporter.h"

#include "platform/Platform.h"
#include "shell/CatchAll.h"
#include "shell/ResourceText.h"

namespace orv {

ExString OrvExporter::s_settingsFolder;

OrvExporter::OrvExporter() {
  CatchAll([this] {
    m_exporterFolder = ExString(FolderPart(platform::HostExecutablePath()));
    m_geometry = std::make_unique<MaxExGeometryExporter>();
    m_animation = std::make_unique<MaxExAnimationExporter>();
  });
}

OrvExporter::~OrvExporter() {
  CatchAll([this] {
    m_geometry.reset();
    m_animation.reset();
  });
}

int OrvExporter::ExtCount() { return 2; }

const TCHAR* OrvExporter::Ext(int n) {
  switch (n) {
    case 0:
      return "IM";
    case 1:
      return "KIN";
    default:
      return "";
  }
}

const TCHAR* OrvExporter::LongDesc() {
  static char s_buffer[256];
  return ResourceText(platform::kStringLongDescription, s_buffer, sizeof(s_buffer));
}

const TCHAR* OrvExporter::ShortDesc() { return ResourceText(platform::kStringShortDescription); }

const TCHAR* OrvExporter::AuthorName() { return ResourceText(platform::kStringAuthor); }

const TCHAR* OrvExporter::CopyrightMessage() { return ResourceText(platform::kStringCopyright); }

const TCHAR* OrvExporter::OtherMessage1() { return ResourceText(platform::kStringOther1); }

const TCHAR* OrvExporter::OtherMessage2() {
  static char s_buffer[256];
  return ResourceText(platform::kStringOther2, s_buffer, sizeof(s_buffer));
}

unsigned int OrvExporter::Version() { return 100; }

void OrvExporter::ShowAbout(HWND owner) {
  CatchAll([&] { platform::ShowAboutBox(owner, this); });
}

BOOL OrvExporter::SupportsOptions(int /*ext*/, DWORD options) {
  return options & SCENE_EXPORT_SELECTED;
}

}  // namespace orv
