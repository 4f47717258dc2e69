#pragma once

#include <cstddef>
#include <cstdio>

namespace orv {

// Where a document is read from or written to.
class MXMLStream {
 public:
  virtual ~MXMLStream() = default;
  virtual size_t Read(void* buffer, size_t size) = 0;           // returns the count read
  virtual size_t Write(const void* buffer, size_t length) = 0;  // returns the count written
};

// A file, open until the stream is destroyed. Without an open file both counts are 0.
class MXMLStreamFile : public MXMLStream {
 public:
  // mode: as for fopen, "rb" or "wb".
  MXMLStreamFile(const char* path, const char* mode) : m_file(std::fopen(path, mode)) {}
  ~MXMLStreamFile() override {
    if (m_file) std::fclose(m_file);
  }
  MXMLStreamFile(const MXMLStreamFile&) = delete;
  MXMLStreamFile& operator=(const MXMLStreamFile&) = delete;

  bool IsOpen() const { return m_file != nullptr; }
  size_t Read(void* buffer, size_t size) override {
    return m_file ? std::fread(buffer, 1, size, m_file) : 0;
  }
  size_t Write(const void* buffer, size_t length) override {
    return m_file ? std::fwrite(buffer, 1, length, m_file) : 0;
  }

 private:
  std::FILE* m_file;
};

}  // namespace orv
