#pragma once

#include <cstddef>
#include <memory>

#include "max.h"
#include "platform/ExString.h"
#include "readers/MaxExAnimationExporter.h"
#include "readers/MaxExGeometryExporter.h"

namespace orv {

// A text of the string table in the one buffer that all callers share: valid until the next call.
const char* ResourceText(unsigned id);

// The same in the caller's buffer, cut to its size.
const char* ResourceText(unsigned id, char* buffer, size_t size);

// The exporter the host lists for the file types "IM" and "KIN". No exception leaves it.
class OrvExporter : public SceneExport {
 public:
  OrvExporter();
  ~OrvExporter() override;

  int ExtCount() override;
  const TCHAR* Ext(int n) override;
  const TCHAR* LongDesc() override;
  const TCHAR* ShortDesc() override;
  const TCHAR* AuthorName() override;
  const TCHAR* CopyrightMessage() override;
  const TCHAR* OtherMessage1() override;
  const TCHAR* OtherMessage2() override;
  unsigned int Version() override;
  void ShowAbout(HWND owner) override;

  // One export from the options dialog to the summary. 0 when the geometry export failed, else 1,
  // also when the user cancelled or an exception stopped it.
  int DoExport(const TCHAR* name, ExpInterface* ei, Interface* host, BOOL suppressPrompts,
               DWORD options) override;
  BOOL SupportsOptions(int ext, DWORD options) override;

  const ExString& ExporterFolder() const { return m_exporterFolder; }

  // Stands for the user's application-data folder; empty: the system's own.
  static ExString s_settingsFolder;

 private:
  ExString OptionsPath() const;
  int ExportAndReport(const TCHAR* name, DWORD options);
  bool LetUserChoose();
  bool RunExport(const TCHAR* name, DWORD options);
  void CollectNodes(DWORD options);
  void WalkNode(INode* top, bool selectedOnly);
  bool ExportGeometry(const TCHAR* name, ExportUserInterface& ui);
  void ExportAnimation(ExportUserInterface& ui);

  Interface* m_host = nullptr;  // not owned; set by DoExport
  std::unique_ptr<MaxExGeometryExporter> m_geometry;
  std::unique_ptr<MaxExAnimationExporter> m_animation;
  ExString m_exporterFolder;  // of the host's program, with its trailing separator
};

}  // namespace orv
