#include "platform/FileReplacement.h"

#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>

#include "platform/Platform.h"

namespace orv {

namespace {

// A link is followed, so that it stays one. Names that this library cannot read as text, as it may
// happen on Windows, are taken as they are: it then throws, whatever error argument it is given.
std::string Resolved(const std::string& nativePath) {
  try {
    return std::filesystem::canonical(nativePath).string();
  } catch (const std::exception&) {
    return nativePath;
  }
}

bool IsDevice(const std::string& nativePath) {
  try {
    return std::filesystem::exists(nativePath) && !std::filesystem::is_regular_file(nativePath);
  } catch (const std::exception&) {
    return false;
  }
}

bool CopyBytes(const std::string& from, const std::string& to) {
  std::ifstream in(from, std::ios::binary);
  std::ofstream out(to, std::ios::binary);
  if (in.peek() != std::ifstream::traits_type::eof()) out << in.rdbuf();
  out.close();
  return in && out;
}

}  // namespace

FileReplacement::FileReplacement(const std::string& path)
    : m_target(Resolved(platform::NativePath(path))),
      m_writePath(m_target + ".partial"),
      m_reason(platform::WhyNotWritable(m_target)) {
  if (IsDevice(m_target) || !platform::WhyNotWritable(m_writePath).empty()) m_writePath = m_target;
}

FileReplacement::~FileReplacement() {
  if (!m_committed && m_writePath != m_target) platform::RemoveFile(m_writePath);
}

bool FileReplacement::Commit() {
  if (m_writePath == m_target || platform::ReplaceFile(m_writePath, m_target)) {
    m_committed = true;
    return true;
  }
  errno = 0;
  if (CopyBytes(m_writePath, m_target)) return true;
  m_reason = errno != 0 ? std::strerror(errno) : "the file is in use";
  return false;
}

}  // namespace orv
