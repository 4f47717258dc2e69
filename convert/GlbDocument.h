#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

namespace orv::convert {

using Json = nlohmann::ordered_json;

// What an accessor's numbers are for.
enum class Use { Vertices, Indices, Other };

// A glTF binary as it is put together. Arrays that glTF does not allow to be empty are left out.
class GlbDocument {
 public:
  GlbDocument();

  // Appends to one of the document's lists ("nodes", "meshes", ...); returns its number there.
  size_t Add(const char* list, Json entry);
  Json& At(const char* list, size_t number) { return m_json[list][number]; }
  size_t CountOf(const char* list) const;

  // count: of elements, each as many numbers as the type says.
  size_t AddFloats(std::span<const float> values, size_t count, const char* type, Use use,
                   bool withBounds = false);
  size_t AddShorts(std::span<const uint16_t> values, size_t count, const char* type, Use use);
  size_t AddIndices(std::span<const uint32_t> values, bool asShorts);
  size_t AddImage(std::string_view bytes, const char* mimeType, const std::string& name);

  // A node of the scene that is below no other.
  void AddRoot(size_t node) { m_roots.push_back(node); }

  const Json& Content() const { return m_json; }
  const std::string& Binary() const { return m_binary; }

  // False, and nothing is written, when a glTF binary, with its 32-bit lengths, cannot hold it.
  bool Write(std::ostream& out) const;

 private:
  size_t AddView(const void* bytes, size_t size, Use use);
  size_t AddAccessor(size_t view, size_t count, uint32_t componentType, const char* type);

  Json m_json;
  Json m_roots = Json::array();
  std::string m_binary;
};

// A name from a file. Bytes that are no UTF-8 are taken for Latin-1.
std::string Utf8(const std::string& text);

}  // namespace orv::convert
