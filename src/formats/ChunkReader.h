#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "scene/Vector.h"

namespace orv {

enum class ReadFault {
  File,     // cannot be opened or read
  Tag,      // something else stands where a chunk is due
  Version,  // of a chunk, unknown here
  Length,  // a chunk, a text or a field reaches over the end of what holds it, or leaves bytes over
  Count,   // more items than the bytes left can hold
  Index    // names something that is not there
};

// What is wrong with a file, and where: an error that ended the reading, or a remark on something
// that did not.
struct ReadProblem {
  ReadFault fault = ReadFault::File;
  size_t offset = 0;  // bytes from the start of the file
  std::string path;   // of the chunk, as "QIRF/CHNK 3/GEOM"; "" outside all chunks
  std::string text;

  std::string Message() const;
  std::string TextWithOffset() const;  // the message without the path
};

enum class FileKind { Unknown, IndexedMesh, Animation };

// By the first 12 bytes.
FileKind KindOf(std::string_view bytes);

// False, with the system's reason, when the file cannot be opened or read.
bool ReadWholeFile(const std::string& fileName, std::string& bytes, ReadProblem& problem);

// Reads the chunks of a file that is held in memory. Nothing in the file is trusted: a length or a
// count is held against the bytes that its chunk has left before anything is allocated. Every
// function throws a ReadProblem when the bytes are not what it reads; the reader is of no further
// use then.
class ChunkReader {
 public:
  explicit ChunkReader(std::string_view bytes) : m_bytes(bytes) {}

  size_t Position() const { return m_position; }
  size_t BytesLeft() const { return Limit() - m_position; }  // of the innermost chunk
  bool NextIs(char letter) const { return BytesLeft() > 0 && m_bytes[m_position] == letter; }

  void EnterRoot(const char (&fileType)[5]);
  void LeaveRoot();

  // Returns the version. number: of the chunk among its like, for the path; -1 for an only one.
  uint32_t EnterChunk(const char (&tag)[5], uint32_t minVersion, uint32_t maxVersion,
                      int64_t number = -1);

  // For a chunk that may be missing. With another tag nothing is read; with an unknown version the
  // tag and the length are, which is remarked: what follows cannot be read then.
  bool TryEnterChunk(const char (&tag)[5], uint32_t version);

  // Bytes that are left over in the chunk are remarked and stay the next to be read: where a chunk
  // ends is found by reading it.
  void LeaveChunk();

  uint32_t ReadU32();
  int32_t ReadI32() { return static_cast<int32_t>(ReadU32()); }
  float ReadF32();
  Vec3 ReadVec3();
  std::string ReadString();  // up to its first zero byte

  // A count of items that take at least so many bytes each. what: "triangle", for the message.
  uint32_t ReadCount(const char* what, size_t minBytesEach);
  void RequireRoom(const char* what, uint64_t count, size_t minBytesEach,
                   size_t stepBack = 0) const;

  // Records that hold nothing but numbers of one size.
  template <typename Scalar, typename Record>
  void ReadRecords(std::vector<Record>& records, const char* what, size_t count) {
    static_assert(sizeof(Record) % sizeof(Scalar) == 0);
    RequireRoom(what, count, sizeof(Record));
    records.resize(count);
    ReadBlock(records.data(), count * sizeof(Record), sizeof(Scalar));
  }
  void ReadBlock(void* records, size_t size, size_t scalarSize);

  void Skip(size_t size);

  // stepBack: from here to the field at fault, in bytes.
  [[noreturn]] void Fail(ReadFault fault, const std::string& text, size_t stepBack = 0) const;
  void Remark(ReadFault fault, const std::string& text);  // the first 64 are kept
  std::vector<ReadProblem> TakeRemarks() { return std::move(m_remarks); }

 private:
  struct OpenChunk {
    char tag[5];
    int64_t number;
    size_t end;
  };

  size_t Limit() const { return m_open.empty() ? m_bytes.size() : m_open.back().end; }
  void Require(const char* what, size_t size) const;
  std::optional<std::string_view> PeekTag() const;
  void ReadTag(std::string_view tag);
  void OpenHere(std::string_view tag, int64_t number);
  std::string Path() const;

  std::string_view m_bytes;  // not owned
  size_t m_position = 0;
  std::deque<OpenChunk> m_open;  // grows without a copy: bones can be nested to any depth
  std::vector<ReadProblem> m_remarks;
};

// Reads a file through read, which throws what ends it. False, with the problem, when it does; the
// file is then as far as it was read. The remarks are in the file either way.
template <typename File>
bool ReadContent(std::string_view bytes, File& file, ReadProblem& problem,
                 void (*read)(ChunkReader&, File&)) {
  file = {};
  ChunkReader in(bytes);
  bool complete = true;
  try {
    read(in, file);
  } catch (const ReadProblem& found) {
    problem = found;
    complete = false;
  }
  file.remarks = in.TakeRemarks();
  return complete;
}

}  // namespace orv
