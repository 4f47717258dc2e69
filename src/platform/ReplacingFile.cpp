#include "platform/ReplacingFile.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/Platform.h"

namespace orv {

namespace {

// The same name on every run, so that what a crash leaves behind is cleared by the next export.
constexpr const char* kTemporarySuffix = ".orv-partial";

std::string SystemReason(int error) {
  return error ? std::generic_category().message(error) : "the file could not be written";
}

}  // namespace

void ReplacingFile::Buffer::Keep(bool failed) {
  if (failed && !m_error) m_error = errno;
}

bool ReplacingFile::Buffer::Close() {
  errno = 0;
  const bool closed = close() != nullptr;
  Keep(!closed);
  return closed;
}

ReplacingFile::Buffer::int_type ReplacingFile::Buffer::overflow(int_type c) {
  errno = 0;
  const int_type result = std::filebuf::overflow(c);
  Keep(traits_type::eq_int_type(result, traits_type::eof()));
  return result;
}

std::streamsize ReplacingFile::Buffer::xsputn(const char* bytes, std::streamsize count) {
  errno = 0;
  const std::streamsize written = std::filebuf::xsputn(bytes, count);
  Keep(written < count);
  return written;
}

int ReplacingFile::Buffer::sync() {
  errno = 0;
  const int result = std::filebuf::sync();
  Keep(result != 0);
  return result;
}

ReplacingFile::Buffer::pos_type ReplacingFile::Buffer::seekoff(off_type offset,
                                                               std::ios::seekdir from,
                                                               std::ios::openmode which) {
  errno = 0;
  const pos_type result = std::filebuf::seekoff(offset, from, which);
  Keep(result == pos_type(off_type(-1)));
  return result;
}

ReplacingFile::Buffer::pos_type ReplacingFile::Buffer::seekpos(pos_type position,
                                                               std::ios::openmode which) {
  errno = 0;
  const pos_type result = std::filebuf::seekpos(position, which);
  Keep(result == pos_type(off_type(-1)));
  return result;
}

ReplacingFile::ReplacingFile(const std::string& path, std::ios::openmode mode)
    : std::ostream(nullptr),
      m_fileName(path),
      m_target(platform::NativePath(path)),
      m_mode(mode | std::ios::out | std::ios::trunc) {
  rdbuf(&m_buffer);
  if (std::string reason = platform::WhyNotWritable(path); !reason.empty()) {
    Fail(std::move(reason));
    return;
  }
  if (const std::string file = platform::FindReplaceableFile(m_target); !file.empty()) {
    m_target = file;
    m_temporary = file + kTemporarySuffix;
    if (m_buffer.open(m_temporary.c_str(), m_mode)) return;
    m_temporary.clear();
  }
  errno = 0;
  if (!m_buffer.open(m_target.c_str(), m_mode)) Fail(SystemReason(errno));
}

ReplacingFile::~ReplacingFile() {
  m_buffer.Close();
  RemoveTemporary();
}

bool ReplacingFile::Commit() {
  if (m_buffer.is_open() && !m_buffer.Close()) setstate(badbit);
  if (fail()) {
    Fail(SystemReason(m_buffer.Error()));
  } else if (!m_temporary.empty() && !PutInPlace()) {
    Fail(SystemReason(errno));
  }
  RemoveTemporary();
  return !fail();
}

bool ReplacingFile::PutInPlace() {
  if (platform::RenameOnto(m_temporary, m_target)) {
    m_temporary.clear();
    return true;
  }
  return WriteThrough();
}

bool ReplacingFile::WriteThrough() {
  errno = 0;
  std::ifstream from(m_temporary, std::ios::binary);
  if (!from) return false;  // before the target is emptied
  std::ofstream to(m_target, std::ios::binary);
  if (from.peek() != traits_type::eof()) to << from.rdbuf();
  to.close();
  return !from.bad() && !to.fail();
}

void ReplacingFile::Fail(std::string reason) {
  if (m_failure.empty()) m_failure = std::move(reason);
  setstate(badbit);
}

void ReplacingFile::RemoveTemporary() {
  if (!m_temporary.empty()) platform::RemoveFile(m_temporary);
  m_temporary.clear();
}

}  // namespace orv
