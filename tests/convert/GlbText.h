#pragma once

#include <FreeImage.h>

#include <cmath>
#include <cstring>

#include "convert/GlbDocument.h"

// A glTF binary as a text that can be read: a line for each entry of its lists, with the numbers or
// pixels behind it.
namespace orv::convert {

inline std::string TextOf(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.6g", std::abs(value) < 1e-6 ? 0 : value);
  return text;
}

inline std::string TextOf(const Json& value) {
  if (value.is_number_float()) return TextOf(value.get<double>());
  if (!value.is_structured()) return value.dump();
  std::string text;
  for (const auto& [key, item] : value.items()) {
    text += (text.empty() ? "" : ", ") + (value.is_object() ? key + ": " : "") + TextOf(item);
  }
  return value.is_object() ? "{" + text + "}" : "[" + text + "]";
}

template <typename Number>
std::string NumbersText(const std::string& bytes, size_t count) {
  std::string text;
  const size_t width = bytes.size() / sizeof(Number) / count;
  for (size_t i = 0; i < count * width; ++i) {
    Number number;
    std::memcpy(&number, bytes.data() + i * sizeof(number), sizeof(number));
    text += (i % width > 0 ? " " : i > 0 ? ", " : "") + TextOf(static_cast<double>(number));
  }
  return text;
}

// Red, green, blue and alpha of the first pixel; a text that is no picture as it is.
inline std::string PictureText(std::string bytes) {
  auto* const memory =
      FreeImage_OpenMemory(reinterpret_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()));
  FIBITMAP* const picture = FreeImage_LoadFromMemory(FIF_PNG, memory, 0);
  FreeImage_CloseMemory(memory);
  if (!picture) return Json(bytes).dump(-1, ' ', true, Json::error_handler_t::ignore);
  RGBQUAD pixel{};
  FreeImage_GetPixelColor(picture, 0, 0, &pixel);
  const Json text = {FreeImage_GetBPP(picture), pixel.rgbRed, pixel.rgbGreen, pixel.rgbBlue,
                     pixel.rgbReserved};
  FreeImage_Unload(picture);
  return "bits and pixel " + text.dump();
}

inline std::string GlbText(const std::string& glb) {
  const auto word = [&](size_t at) {
    uint32_t value;
    std::memcpy(&value, glb.data() + at, 4);
    return value;
  };
  const size_t binary = 20 + word(12) + 8;  // where it begins
  const Json json = Json::parse(glb.substr(20, word(12)));
  std::string text = glb.substr(0, 4) + TextOf(Json{word(4), word(8) - glb.size()}) +
                     glb.substr(16, 4) + TextOf(Json{word(12) % 4}) + glb.substr(binary - 4, 3) +
                     TextOf(Json{word(binary - 8), binary + word(binary - 8) - glb.size()}) + "\n";
  for (const auto& [list, entries] : json.items()) {
    if (!entries.is_array()) text += list + " " + TextOf(entries) + "\n";
    for (size_t i = 0; entries.is_array() && i < entries.size(); ++i) {
      const Json& entry = entries[i];
      text += list + " " + std::to_string(i) + " " + TextOf(entry);
      if (entry.contains("bufferView")) {
        const Json& view = json["bufferViews"][entry["bufferView"].get<size_t>()];
        const std::string bytes =
            glb.substr(binary + view["byteOffset"].get<size_t>(), view["byteLength"]);
        const size_t count = entry.value("count", 1), type = entry.value("componentType", 0);
        text += " = " + (list == "images" ? PictureText(bytes)
                         : type == 5126   ? NumbersText<float>(bytes, count)
                         : type == 5125   ? NumbersText<uint32_t>(bytes, count)
                                          : NumbersText<uint16_t>(bytes, count));
      }
      text += "\n";
    }
  }
  return text;
}

}  // namespace orv::convert
