#pragma once

#include <optional>
#include <string>

namespace orv::convert {

// A picture as a file's bytes.
struct Picture {
  std::string bytes;
  const char* mimeType = "";
};

// PNG and JPEG as they are; what else the picture library reads, as PNG. name: tells the kind of
// those that have no signature. Nothing for what it cannot read. Throws std::runtime_error, with
// the system's words, when the library is needed and cannot be opened.
std::optional<Picture> PictureFrom(const std::string& bytes, const std::string& name);

// The colours of one picture with another one's alpha, or with its brightness when it has none; it
// needs the library always.
std::optional<Picture> WithAlphaOf(const std::string& bytes, const std::string& name,
                                   const std::string& alphaBytes, const std::string& alphaName);

}  // namespace orv::convert
