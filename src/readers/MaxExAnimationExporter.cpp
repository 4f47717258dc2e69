#include "readers/MaxExAnimationExporter.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "formats/AnimationFile.h"
#include "formats/Events.h"
#include "options/Options.h"
#include "platform/ExString.h"
#include "readers/MaxExSkeleton.h"
#include "units.h"

namespace orv {
namespace {

std::vector<INode*> BonesAmong(std::span<INode* const> nodes) {
  std::vector<INode*> bones;
  std::copy_if(nodes.begin(), nodes.end(), std::back_inserter(bones), IsBone);
  return bones;
}

}  // namespace

bool MaxExAnimationExporter::ExportAnimation(Interface* host, const char* outputFileName,
                                             int firstFrame, int lastFrame,
                                             ExportUserInterface& ui) {
  const Options& options = Options::Instance();
  MaxExGenericSkeleton skeleton(BonesAmong(m_nodes.Nodes()));
  if (!options.m_exportGeometry) skeleton.ReportStrayRoots(ui);
  if (!skeleton.m_root) {
    ui.Report("bones-missing");
    return false;
  }
  AnimationHeader header;
  header.firstFrame = firstFrame;
  header.lastFrame = lastFrame;
  header.frameRate = static_cast<uint32_t>(GetFrameRate());
  header.name = BaseNamePart(host->GetCurFileName().data());
  header.masterScale = static_cast<float>(GetMasterScale(kMetres));
  header.events = ReadEventFile(options.m_eventFileName.CStr(), ui);
  return WriteAnimationFile(outputFileName, skeleton, header, ui);
}

}  // namespace orv
