#include "xml/MXMLStream.h"

namespace orv {

MXMLStreamFile::MXMLStreamFile(const char* path, const char* mode)
    : m_file(std::fopen(path, mode)) {}

MXMLStreamFile::~MXMLStreamFile() {
  if (m_file) std::fclose(m_file);
}

size_t MXMLStreamFile::Read(void* buffer, size_t size) {
  return m_file ? std::fread(buffer, 1, size, m_file) : 0;
}

size_t MXMLStreamFile::Write(const void* buffer, size_t length) {
  return m_file ? std::fwrite(buffer, 1, length, m_file) : 0;
}

}  // namespace orv
