#include "shell/OrvExporter.h"

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "bmmlib.h"

#include "formats/SideFiles.h"
#include "options/Options.h"
#include "platform/Platform.h"
#include "shell/ManageDialog.h"
#include "shell/MaxExportUserInterface.h"

namespace orv {
namespace {

// Runs the body of an entry point, which no exception may leave; one that comes is shown, and the
// answer is then false.
template <typename Body>
bool CatchAll(Body body) {
  try {
    body();
    return true;
  } catch (...) {
    platform::ShowMessageBox(MakeFinding("unhandled-exception").text.c_str(), "Exception",
                             platform::Buttons::Ok, platform::Icon::Error);
    return false;
  }
}

int OwnerWindow(Interface* host) {
  return static_cast<int>(reinterpret_cast<intptr_t>(host->GetMAXHWnd()));
}

// The chosen name with another extension. Kept: the cut is at the last "." of the whole path, a
// folder's too. Pinned by ExportDriver.NamesAreCutAtTheLastDotOfTheWholePath.
ExString OutputName(const TCHAR* name, const char* extension) {
  return ExString(name).StripExtension().Append(extension);
}

void NoteWhatIsAsked(const TCHAR* name) {
  const Options& settings = Options::Instance();
  ExportOutcome& outcome = ManageDialog::s_outcome;
  outcome.isStarted = true;
  outcome.geometry.isAskedFor = settings.m_exportGeometry;
  outcome.geometry.path = OutputName(name, ".im").CStr();
  outcome.animation.isAskedFor = settings.m_exportAnimation;
  outcome.animation.path = OutputName(name, ".kin").CStr();
}

// The frames the host's time slider spans; the dialog starts from all of them.
void SeedFrameRange(Options& options, Interval range) {
  const int ticksPerFrame = GetTicksPerFrame();
  options.m_animationStartFrame = range.Start() / ticksPerFrame;
  options.m_animationEndFrame = range.End() / ticksPerFrame;
  options.m_exportStartFrame = options.m_animationStartFrame;
  options.m_exportEndFrame = options.m_animationEndFrame;
}

// What was reported last is what has kept the file from being written.
void SayWhyMissing(OutputFile& file) {
  if (!file.isAskedFor || file.isWritten || !file.why.empty()) return;
  for (const Finding& finding : ManageDialog::s_outcome.findings)
    if (finding.severity != Severity::Information) file.why = finding.code;
}

// The name in full; "" when the host does not find the bitmap.
std::string FindBitmap(const std::string& name) {
  BitmapInfo bitmap;
  bitmap.SetName(name.c_str());
  return BMMGetFullFilename(&bitmap) ? bitmap.Name() : "";
}

}  // namespace

const char* ResourceText(unsigned id) {
  static char s_buffer[256];
  return ResourceText(id, s_buffer, sizeof(s_buffer));
}

const char* ResourceText(unsigned id, char* buffer, size_t size) {
  const bool loaded = platform::ModuleInstance() != nullptr;
  std::snprintf(buffer, size, "%s", loaded ? platform::ResourceString(id).c_str() : "");
  return buffer;
}

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

// The windows hand on the host's messages while they are open, so the user can ask for a second
// export before the first one has ended.
int OrvExporter::DoExport(const TCHAR* name, ExpInterface* /*ei*/, Interface* host,
                          BOOL /*suppressPrompts*/, DWORD options) {
  static bool s_running = false;
  if (s_running) {
    CatchAll([] {
      platform::ShowMessageBox(MakeFinding("export-running").text.c_str(), "Velmor Exporter",
                               platform::Buttons::Ok, platform::Icon::Information);
    });
    return 1;
  }
  s_running = true;
  m_host = host;
  int result = 1;
  const bool ended = CatchAll([&] {
    ManageDialog::BeginExport();
    result = ExportAndReport(name, options);
  });
  CatchAll([&] {
    ExportOutcome& outcome = ManageDialog::s_outcome;
    if (!ended) outcome.findings.push_back(MakeFinding("unhandled-exception"));
    SayWhyMissing(outcome.geometry);
    SayWhyMissing(outcome.animation);
    ManageDialog::EndExport();
  });
  s_running = false;
  if (m_geometry) m_geometry->Clear();
  if (m_animation) m_animation->Clear();
  return result;
}

// What stops an export is logged, and the log then ends as after any other.
int OrvExporter::ExportAndReport(const TCHAR* name, DWORD options) {
  bool succeeded = true;
  try {
    if (!m_geometry || !m_animation) throw MakeFinding("unhandled-exception");
    if (!LetUserChoose()) return 1;
    NoteWhatIsAsked(name);
    succeeded = RunExport(name, options);
  } catch (const Finding& finding) {
    ManageDialog::Report(finding);
  } catch (const char* text) {
    ManageDialog::Report(MakeFinding("export-stopped", text ? text : "<NULL>"));
  } catch (...) {
    ManageDialog::Report(MakeFinding("unhandled-exception"));
  }
  ManageDialog::LogSummary();
  ManageDialog::WaitForUserToCloseLogWindow(OwnerWindow(m_host));
  ManageDialog::DestroyManagedResources();
  return succeeded ? 1 : 0;
}

// The options as they were left, with the host's frames; false: the user cancels.
bool OrvExporter::LetUserChoose() {
  const ExString path = OptionsPath();
  Options& settings = Options::Instance();
  if (!settings.Load(path.CStr())) settings.Reset();
  SeedFrameRange(settings, m_host->GetAnimRange());
  if (!ManageDialog::ShowExporterDialog(OwnerWindow(m_host))) return false;
  settings.Save(path.CStr());
  return true;
}

ExString OrvExporter::OptionsPath() const {
  ExString folder = s_settingsFolder;
  if (folder.IsEmpty()) {
    const std::optional<std::string> applicationData = platform::ApplicationDataFolder();
    if (!applicationData) {
      folder = m_exporterFolder;
      return folder.AppendPath("plugins", false).AppendPath("OrvExporter.xml", false);
    }
    folder = ExString(applicationData->c_str());
  }
  folder.AppendPath("Tamsk", false).AppendPath("VelmorOrvExporter", false);
  folder.NormalizeSeparators('\\');
  platform::CreateFolders(folder.CStr());
  return folder.AppendPath("OrvExporter.xml", false);
}

// The host's progress bar ends with it, also after a failure: the summary comes last.
bool OrvExporter::RunExport(const TCHAR* name, DWORD options) {
  const Options& settings = Options::Instance();
  MaxExportUserInterface ui(m_host);
  ManageDialog::InitManagedResources();
  ManageDialog::OpenLogWindow(OwnerWindow(m_host));
  ManageDialog::Log(MakeFinding("export-started"));
  ui.m_enableWarnings = settings.m_enableWarnings;
  CollectNodes(options);
  if (settings.m_exportGeometry && !ExportGeometry(name, ui)) return false;
  if (settings.m_exportAnimation) ExportAnimation(ui);
  return true;
}

// A selection limits the export, also when the user did not ask for the selected nodes alone.
void OrvExporter::CollectNodes(DWORD options) {
  if ((options & SCENE_EXPORT_SELECTED) || m_host->GetSelNodeCount() > 0) {
    for (int k = 0; k < m_host->GetSelNodeCount(); ++k) WalkNode(m_host->GetSelNode(k), true);
  } else {
    WalkNode(m_host->GetRootNode(), false);
  }
}

// Depth first, with a stack of its own: a scene's nesting is not bounded.
void OrvExporter::WalkNode(INode* top, bool selectedOnly) {
  const Options& settings = Options::Instance();
  std::vector<INode*> waiting{top};
  while (!waiting.empty()) {
    INode* node = waiting.back();
    waiting.pop_back();
    if (!node) continue;
    if (!node->IsHidden(0, FALSE) && !node->IsFrozen()) {
      if (settings.m_exportGeometry) m_geometry->AddNode(node, selectedOnly);
      if (settings.m_exportAnimation) m_animation->AddNode(node, selectedOnly);
    }
    for (int c = node->NumberOfChildren(); c-- > 0;) waiting.push_back(node->GetChildNode(c));
  }
}

bool OrvExporter::ExportGeometry(const TCHAR* name, ExportUserInterface& ui) {
  OutputFile& file = ManageDialog::s_outcome.geometry;
  const bool succeeded = m_geometry->ExportGeometry(m_host, file.path.c_str(), ui);
  SayWhyMissing(file);
  if (!succeeded) {
    ManageDialog::Report(MakeFinding("geometry-failed"));
    return false;
  }
  if (Options::Instance().m_collectTextures) {
    const ExString folder = ExString(name).StripFileName();
    CopyTextures(ui.Textures(), folder.CStr(), true, true, FindBitmap, ui);
  }
  return true;
}

void OrvExporter::ExportAnimation(ExportUserInterface& ui) {
  const Options& settings = Options::Instance();
  m_animation->ExportAnimation(m_host, ManageDialog::s_outcome.animation.path.c_str(),
                               settings.m_exportStartFrame, settings.m_exportEndFrame, ui);
}

}  // namespace orv
