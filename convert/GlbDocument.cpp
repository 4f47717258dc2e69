#include "convert/GlbDocument.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

namespace orv::convert {

namespace {

static_assert(std::endian::native == std::endian::little);  // numbers are copied as they are

constexpr uint32_t kUnsignedShort = 5123, kUnsignedInt = 5125, kFloat = 5126;
constexpr uint32_t kArrayBuffer = 34962, kElementArrayBuffer = 34963;

void WriteU32(std::ostream& out, uint32_t value) {
  out.write(reinterpret_cast<const char*>(&value), sizeof(value));
}

// Smallest and largest, component by component.
void AddBounds(Json& accessor, std::span<const float> values, size_t count) {
  const size_t width = values.size() / count;
  std::vector<float> smallest(values.begin(), values.begin() + static_cast<ptrdiff_t>(width));
  std::vector<float> largest = smallest;
  for (size_t i = 0; i < values.size(); ++i) {
    smallest[i % width] = std::min(smallest[i % width], values[i]);
    largest[i % width] = std::max(largest[i % width], values[i]);
  }
  accessor["min"] = smallest;
  accessor["max"] = largest;
}

}  // namespace

GlbDocument::GlbDocument() { m_json["asset"] = {{"version", "2.0"}, {"generator", "orv convert"}}; }

size_t GlbDocument::Add(const char* list, Json entry) {
  Json& entries = m_json[list];
  entries.push_back(std::move(entry));
  return entries.size() - 1;
}

size_t GlbDocument::CountOf(const char* list) const {
  const auto found = m_json.find(list);
  return found == m_json.end() ? 0 : found->size();
}

size_t GlbDocument::AddView(const void* bytes, size_t size, Use use) {
  m_binary.resize((m_binary.size() + 3) / 4 * 4);
  Json view = {{"buffer", 0}, {"byteOffset", m_binary.size()}, {"byteLength", size}};
  if (use == Use::Vertices) view["target"] = kArrayBuffer;
  if (use == Use::Indices) view["target"] = kElementArrayBuffer;
  m_binary.append(static_cast<const char*>(bytes), size);
  return Add("bufferViews", std::move(view));
}

size_t GlbDocument::AddAccessor(size_t view, size_t count, uint32_t componentType,
                                const char* type) {
  return Add(
      "accessors",
      {{"bufferView", view}, {"componentType", componentType}, {"count", count}, {"type", type}});
}

size_t GlbDocument::AddFloats(std::span<const float> values, size_t count, const char* type,
                              Use use, bool withBounds) {
  const size_t accessor =
      AddAccessor(AddView(values.data(), values.size_bytes(), use), count, kFloat, type);
  if (withBounds) AddBounds(At("accessors", accessor), values, count);
  return accessor;
}

size_t GlbDocument::AddShorts(std::span<const uint16_t> values, size_t count, const char* type,
                              Use use) {
  return AddAccessor(AddView(values.data(), values.size_bytes(), use), count, kUnsignedShort, type);
}

size_t GlbDocument::AddIndices(std::span<const uint32_t> values, bool asShorts) {
  if (asShorts) {
    const std::vector<uint16_t> shorts(values.begin(), values.end());
    return AddShorts(shorts, shorts.size(), "SCALAR", Use::Indices);
  }
  return AddAccessor(AddView(values.data(), values.size_bytes(), Use::Indices), values.size(),
                     kUnsignedInt, "SCALAR");
}

size_t GlbDocument::AddImage(std::string_view bytes, const char* mimeType,
                             const std::string& name) {
  const size_t view = AddView(bytes.data(), bytes.size(), Use::Other);
  return Add("images", {{"name", Utf8(name)}, {"mimeType", mimeType}, {"bufferView", view}});
}

bool GlbDocument::Write(std::ostream& out) const {
  const size_t padding = (4 - m_binary.size() % 4) % 4;
  Json json = m_json;
  if (!m_binary.empty()) json["buffers"] = Json::array({{{"byteLength", m_binary.size()}}});
  Json scene = Json::object();
  if (!m_roots.empty()) scene["nodes"] = m_roots;
  json["scene"] = 0;
  json["scenes"] = Json::array({scene});
  std::string text = json.dump();
  text.resize((text.size() + 3) / 4 * 4, ' ');
  const uint64_t binaryChunk = m_binary.empty() ? 0 : 8 + m_binary.size() + padding;
  const uint64_t size = 12 + 8 + text.size() + binaryChunk;
  if (size > UINT32_MAX) return false;
  out << "glTF";
  WriteU32(out, 2);
  WriteU32(out, static_cast<uint32_t>(size));
  WriteU32(out, static_cast<uint32_t>(text.size()));
  out << "JSON" << text;
  if (m_binary.empty()) return true;
  WriteU32(out, static_cast<uint32_t>(m_binary.size() + padding));
  out.write("BIN\0", 4);
  out << m_binary;
  out.write("\0\0\0", static_cast<std::streamsize>(padding));
  return true;
}

std::string Utf8(const std::string& text) {
  try {
    Json(text).dump();
    return text;
  } catch (const Json::type_error&) {
  }
  std::string utf8;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      utf8 += c;
    } else {
      utf8 += static_cast<char>(0xC0 | byte >> 6);
      utf8 += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return utf8;
}

}  // namespace orv::convert
