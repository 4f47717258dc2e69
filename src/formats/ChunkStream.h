#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "platform/ReplacingFile.h"
#include "scene/Vector.h"

// The container of both file types: a tree of chunks, each a tag of 4 letters, the length of all
// that follows in it, a version and a body. Every number is little-endian.
namespace orv {

class ExportUserInterface;

// An output file in binary mode. The target changes when Commit is called, and only then.
class binofstream : public ReplacingFile {
 public:
  explicit binofstream(const std::string& fileName) : ReplacingFile(fileName, std::ios::binary) {}
};

// An input file in binary mode.
class binifstream : public std::ifstream {
 public:
  explicit binifstream(const std::string& fileName);
};

// The error code that the user is told when a file could not be written.
inline constexpr int kCannotWriteFile = 16;

// Commits the file. False, with the error and then the system's reason logged, when it could not be
// written; the file that was there is still there.
bool CommitOrReport(binofstream& out, ExportUserInterface& ui);

void WriteTag(std::ostream& out, const char (&tag)[5]);
void WriteU32(std::ostream& out, uint32_t value);
void WriteI32(std::ostream& out, int32_t value);
void WriteF32(std::ostream& out, float value);
void WriteVec3(std::ostream& out, Vec3 value);

// The length, rounded up to a multiple of 4, and the text filled up with zero bytes to that length:
// a text whose length is a multiple of 4 has no terminator.
void WriteString(std::ostream& out, std::string_view text);

// Records that hold nothing but numbers of scalarSize bytes each.
void WriteBlock(std::ostream& out, const void* records, size_t size, size_t scalarSize);

template <typename Scalar, typename Record>
void WriteRecords(std::ostream& out, std::span<const Record> records) {
  static_assert(sizeof(Record) % sizeof(Scalar) == 0);
  WriteBlock(out, records.data(), records.size_bytes(), sizeof(Scalar));
}

// Where a length or a count goes that is known only later.
struct ChunkPosition {
  std::streamoff offset = 0;
};
struct CountPosition {
  std::streamoff offset = 0;
};

// Begin leaves room right after the tag, End fills in the number of bytes written since. Both End
// and Patch go back to the end of the stream.
ChunkPosition BeginChunk(std::ostream& out);
void EndChunk(std::ostream& out, ChunkPosition position);
CountPosition BeginCount(std::ostream& out);
void PatchCount(std::ostream& out, CountPosition position, uint32_t count);

// One chunk being written. The constructor writes the tag, room for the length, and the version;
// the destructor fills the length in. Nested chunks are nested scopes, so give each one a name: an
// unnamed scope ends on its own line, before the body.
class [[nodiscard]] ChunkScope {
 public:
  ChunkScope(std::ostream& out, const char (&tag)[5], uint32_t version);
  ~ChunkScope() { EndChunk(m_out, m_length); }
  ChunkScope(const ChunkScope&) = delete;
  ChunkScope& operator=(const ChunkScope&) = delete;

 private:
  std::ostream& m_out;     // not owned; outlives the scope
  ChunkPosition m_length;  // where the length goes
};

// The chunk around the whole file. It has the file type in the place of a version.
class [[nodiscard]] RootScope {
 public:
  RootScope(std::ostream& out, const char (&fileType)[5]);
  ~RootScope() { EndChunk(m_out, m_length); }
  RootScope(const RootScope&) = delete;
  RootScope& operator=(const RootScope&) = delete;

 private:
  std::ostream& m_out;
  ChunkPosition m_length;
};

}  // namespace orv
