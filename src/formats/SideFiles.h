#pragma once

#include <functional>
#include <string>
#include <vector>

#include "report/ExportUserInterface.h"
#include "scene/GenericMaterial.h"

namespace orv {

// The material type name that the engine chooses a shader by: the given name in lower case; one
// without "m." is an error to the user and gets "m." and a suffix that its maps decide.
// allowBillboards: whether a diffuse map named "tb_" or "sb_" may decide it.
std::string ComposeMaterialName(const GenericMaterial& material, const std::string& name,
                                bool allowBillboards, ExportUserInterface& ui);

// Writes the ".texture.txt" file of every map, and gives each map the name that the engine then
// knows its texture by; the opacity map goes into the diffuse map's file. Collects the textures.
// folder: of the mesh file, with its trailing separator, or "". The flags say what becomes of a
// file that exists; the user's answers and a user interface that cannot ask change them.
// Returns whether the material has an opacity map.
bool WriteTextureSideFiles(GenericMaterial& material, const std::string& folder,
                           ExportUserInterface& ui, bool& askOverwrite, bool& forceOverwrite);

// Finds a texture on the host's bitmap search path; "" when it is nowhere.
using TextureResolver = std::function<std::string(const std::string& fileName)>;

// Copies the textures into the folder, those that are not there already, and logs those that
// failed. The flags are platform::CopyOneFile's. Returns whether all arrived.
bool CopyTextures(const std::vector<std::string>& names, const std::string& folder,
                  bool noQuestions, bool silent, const TextureResolver& resolve,
                  ExportUserInterface& ui);

}  // namespace orv
