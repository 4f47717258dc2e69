#include "formats/ChunkReader.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "formats/ChunkStream.h"

namespace orv {

namespace {

constexpr size_t kMaxRemarks = 64;  // a file with more is damaged throughout
constexpr size_t kReadStep = size_t{1} << 20;
constexpr size_t kMostReserved = size_t{1} << 28;  // a greater size is believed as it is read

// Room for the rest of the file, so that it is not moved while it grows. Leaves errno alone: a pipe
// has no size, and no fault for it.
void ReserveForFile(std::ifstream& in, std::string& bytes) {
  const int before = errno;
  const std::streamoff size = in.rdbuf()->pubseekoff(0, std::ios::end, std::ios::in);
  if (size > 0) bytes.reserve(std::min(static_cast<size_t>(size), kMostReserved) + kReadStep);
  in.rdbuf()->pubseekpos(0, std::ios::in);
  errno = before;
}

// A tag from a damaged file, fit for a message.
std::string Printable(std::string_view tag) {
  std::string text(tag);
  for (char& c : text) {
    if (c < ' ' || c > '~') c = '?';
  }
  return "\"" + text + "\"";
}

}  // namespace

std::string ReadProblem::Message() const {
  if (fault == ReadFault::File) return text;
  return (path.empty() ? "" : path + ": ") + TextWithOffset();
}

std::string ReadProblem::TextWithOffset() const {
  return text + " (at byte " + std::to_string(offset) + ")";
}

FileKind KindOf(std::string_view bytes) {
  if (bytes.size() < 12 || bytes.substr(0, 4) != "QIRF") return FileKind::Unknown;
  const std::string_view type = bytes.substr(8, 4);
  if (type == "IDXM") return FileKind::IndexedMesh;
  return type == "ANIM" ? FileKind::Animation : FileKind::Unknown;
}

bool ReadWholeFile(const std::string& fileName, std::string& bytes, ReadProblem& problem) {
  errno = 0;
  binifstream in(fileName);
  bytes.clear();
  if (in) ReserveForFile(in, bytes);
  while (in) {
    const size_t before = bytes.size();
    bytes.resize(before + kReadStep);
    in.read(bytes.data() + before, static_cast<std::streamsize>(kReadStep));
    bytes.resize(before + static_cast<size_t>(in.gcount()));
  }
  if (in.eof() && !in.bad()) return true;
  problem = {};
  problem.text = errno ? std::generic_category().message(errno) : "the file cannot be read";
  return false;
}

void ChunkReader::EnterRoot(const char (&fileType)[5]) {
  ReadTag("QIRF");
  OpenHere("QIRF", -1);
  ReadTag(fileType);
}

void ChunkReader::LeaveRoot() {
  const size_t end = Limit();
  LeaveChunk();
  m_position = end;
  if (BytesLeft() > 0) {
    Remark(ReadFault::Length, std::to_string(BytesLeft()) + " bytes follow the last chunk");
  }
}

uint32_t ChunkReader::EnterChunk(const char (&tag)[5], uint32_t minVersion, uint32_t maxVersion,
                                 int64_t number) {
  ReadTag(tag);
  OpenHere(tag, number);
  const uint32_t version = ReadU32();
  if (version < minVersion || version > maxVersion) {
    Fail(ReadFault::Version, "version " + std::to_string(version) + " is unknown", 4);
  }
  return version;
}

bool ChunkReader::TryEnterChunk(const char (&tag)[5], uint32_t version) {
  if (PeekTag() != std::string_view(tag, 4)) return false;
  ReadTag(tag);
  OpenHere(tag, -1);
  const uint32_t found = ReadU32();
  if (found == version) return true;
  m_position -= 4;
  Remark(ReadFault::Version, "version " + std::to_string(found) + " is unknown");
  m_open.pop_back();
  return false;
}

void ChunkReader::LeaveChunk() {
  if (BytesLeft() > 0) {
    Remark(ReadFault::Length, std::to_string(BytesLeft()) + " bytes are left over");
  }
  m_open.pop_back();
}

uint32_t ChunkReader::ReadU32() {
  uint32_t value = 0;
  Require("a number", sizeof(value));
  ReadBlock(&value, sizeof(value), sizeof(value));
  return value;
}

float ChunkReader::ReadF32() { return std::bit_cast<float>(ReadU32()); }

Vec3 ChunkReader::ReadVec3() {
  Require("a vector", 12);
  const float x = ReadF32();
  const float y = ReadF32();
  return {x, y, ReadF32()};
}

std::string ChunkReader::ReadString() {
  const uint32_t length = ReadU32();
  Require("a text", length);
  const std::string_view text = m_bytes.substr(m_position, length);
  m_position += length;
  return std::string(text.substr(0, text.find('\0')));
}

uint32_t ChunkReader::ReadCount(const char* what, size_t minBytesEach) {
  const uint32_t count = ReadU32();
  RequireRoom(what, count, minBytesEach, 4);
  return count;
}

void ChunkReader::RequireRoom(const char* what, uint64_t count, size_t minBytesEach,
                              size_t stepBack) const {
  if (count <= BytesLeft() / minBytesEach) return;
  Fail(ReadFault::Count,
       std::string(what) + " count " + std::to_string(count) + " exceeds the " +
           (m_open.size() > 1 ? "chunk" : "file"),
       stepBack);
}

void ChunkReader::ReadBlock(void* records, size_t size, size_t scalarSize) {
  Require("a table", size);
  if (size == 0) return;
  char* bytes = static_cast<char*>(records);
  std::memcpy(bytes, m_bytes.data() + m_position, size);
  m_position += size;
  if constexpr (std::endian::native != std::endian::little) {
    for (size_t i = 0; i < size; i += scalarSize) std::reverse(bytes + i, bytes + i + scalarSize);
  }
}

void ChunkReader::Skip(size_t size) {
  Require("a table", size);
  m_position += size;
}

void ChunkReader::Fail(ReadFault fault, const std::string& text, size_t stepBack) const {
  throw ReadProblem{fault, m_position - stepBack, Path(), text};
}

void ChunkReader::Remark(ReadFault fault, const std::string& text) {
  if (m_remarks.size() < kMaxRemarks) m_remarks.push_back({fault, m_position, Path(), text});
}

void ChunkReader::Require(const char* what, size_t size) const {
  if (size <= BytesLeft()) return;
  Fail(ReadFault::Length, std::string(what) + " of " + std::to_string(size) +
                              " bytes is cut off, " + std::to_string(BytesLeft()) + " are left");
}

std::optional<std::string_view> ChunkReader::PeekTag() const {
  if (BytesLeft() < 4) return std::nullopt;
  return m_bytes.substr(m_position, 4);
}

void ChunkReader::ReadTag(std::string_view tag) {
  Require("a tag", 4);
  if (const std::string_view found = *PeekTag(); found != tag) {
    Fail(ReadFault::Tag, "found " + Printable(found) + " where " + Printable(tag) + " is due");
  }
  m_position += 4;
}

void ChunkReader::OpenHere(std::string_view tag, int64_t number) {
  const uint32_t length = ReadU32();
  if (length > BytesLeft()) {
    Fail(ReadFault::Length,
         std::string(tag) + " is " + std::to_string(length) + " bytes long, " +
             std::to_string(BytesLeft()) + " are left",
         4);
  }
  OpenChunk chunk{{}, number, m_position + length};
  std::copy(tag.begin(), tag.end(), chunk.tag);
  m_open.push_back(chunk);
}

// Chunks of one tag within each other, as bones are, are named once.
std::string ChunkReader::Path() const {
  std::string path;
  for (size_t i = 0; i < m_open.size(); ++i) {
    size_t depth = 1;
    while (i + 1 < m_open.size() && std::strcmp(m_open[i].tag, m_open[i + 1].tag) == 0) {
      ++depth;
      ++i;
    }
    path += (path.empty() ? "" : "/") + std::string(m_open[i].tag);
    if (m_open[i].number >= 0) path += " " + std::to_string(m_open[i].number);
    if (depth > 1) path += " (depth " + std::to_string(depth) + ")";
  }
  return path;
}

}  // namespace orv
