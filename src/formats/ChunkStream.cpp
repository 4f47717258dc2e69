#include "formats/ChunkStream.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "platform/Platform.h"
#include "report/ExportUserInterface.h"

namespace orv {

namespace {

void PatchU32(std::ostream& out, std::streamoff offset, uint32_t value) {
  out.seekp(offset);
  WriteU32(out, value);
  out.seekp(0, std::ios::end);
}

}  // namespace

binifstream::binifstream(const std::string& fileName)
    : std::ifstream(platform::NativePath(fileName), std::ios::binary) {}

bool CommitOrReport(binofstream& out, ExportUserInterface& ui) {
  const auto bytes = static_cast<uint64_t>(out.tellp());
  const bool isWritten = out.Commit();
  ui.RecordFile(out.FileName(), isWritten, bytes, out.FailureReason());
  if (isWritten) return true;
  ui.Report("file-not-writable", kCannotWriteFile, out.FileName());
  ui.Report("file-not-writable-reason", out.FileName(), out.FailureReason());
  return false;
}

void WriteTag(std::ostream& out, const char (&tag)[5]) { out.write(tag, 4); }

void WriteU32(std::ostream& out, uint32_t value) {
  const char bytes[4] = {static_cast<char>(value), static_cast<char>(value >> 8),
                         static_cast<char>(value >> 16), static_cast<char>(value >> 24)};
  out.write(bytes, 4);
}

void WriteI32(std::ostream& out, int32_t value) { WriteU32(out, static_cast<uint32_t>(value)); }

void WriteF32(std::ostream& out, float value) { WriteU32(out, std::bit_cast<uint32_t>(value)); }

void WriteVec3(std::ostream& out, Vec3 value) {
  WriteF32(out, value.x);
  WriteF32(out, value.y);
  WriteF32(out, value.z);
}

void WriteString(std::ostream& out, std::string_view text) {
  constexpr char kZeros[3] = {};
  const size_t paddedLength = (text.size() + 3) & ~size_t{3};
  WriteU32(out, static_cast<uint32_t>(paddedLength));
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  out.write(kZeros, static_cast<std::streamsize>(paddedLength - text.size()));
}

void WriteBlock(std::ostream& out, const void* records, size_t size, size_t scalarSize) {
  const char* bytes = static_cast<const char*>(records);
  if constexpr (std::endian::native == std::endian::little) {
    out.write(bytes, static_cast<std::streamsize>(size));
  } else {
    std::string swapped(bytes, size);
    for (size_t i = 0; i < size; i += scalarSize) {
      std::reverse(swapped.data() + i, swapped.data() + i + scalarSize);
    }
    out.write(swapped.data(), static_cast<std::streamsize>(size));
  }
}

ChunkPosition BeginChunk(std::ostream& out) {
  const ChunkPosition position{out.tellp()};
  WriteU32(out, 0);
  return position;
}

void EndChunk(std::ostream& out, ChunkPosition position) {
  const std::streamoff length = std::streamoff{out.tellp()} - position.offset - 4;
  if (length > std::numeric_limits<uint32_t>::max()) out.setstate(std::ios::failbit);
  PatchU32(out, position.offset, static_cast<uint32_t>(length));
}

CountPosition BeginCount(std::ostream& out) {
  const CountPosition position{out.tellp()};
  WriteU32(out, 0);
  return position;
}

void PatchCount(std::ostream& out, CountPosition position, uint32_t count) {
  PatchU32(out, position.offset, count);
}

ChunkScope::ChunkScope(std::ostream& out, const char (&tag)[5], uint32_t version) : m_out(out) {
  WriteTag(out, tag);
  m_length = BeginChunk(out);
  WriteU32(out, version);
}

RootScope::RootScope(std::ostream& out, const char (&fileType)[5]) : m_out(out) {
  WriteTag(out, "QIRF");
  m_length = BeginChunk(out);
  WriteTag(out, fileType);
}

}  // namespace orv
