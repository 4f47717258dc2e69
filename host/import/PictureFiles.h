// Inside of OpenScene: pictures as files, whatever read their bytes.
#pragma once

#include <string>
#include <string_view>

#include "host/memory/Scene.h"

namespace orv::host {

// Whether a picture's file has an alpha channel, judged by its first bytes (PNG's header chunks
// have to be among them). Formats that cannot be told apart so count as having one.
bool PictureCarriesAlpha(std::string_view bytes, std::string_view fileName);

constexpr size_t kPictureHeadBytes = 65536;

// A file's name of characters that every system takes, and none that lead to another folder.
std::string CleanFileName(std::string name);

// Writes a picture that a scene file holds itself. The same in the folder already is fine; a file
// of that name with other content is left alone, and the picture goes beside it. The answer is its
// full name, which the scene can find. What went otherwise than asked is among the scene's
// warnings.
std::string WritePicture(const std::string& folder, const std::string& name,
                         const std::string& bytes, SceneInfo& info);

}  // namespace orv::host
