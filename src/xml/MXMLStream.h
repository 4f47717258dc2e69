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
  MXMLStreamFile(const char* path, const char* mode);  // as for fopen: "rb", "wb"
  ~MXMLStreamFile() override;
  MXMLStreamFile(const MXMLStreamFile&) = delete;
  MXMLStreamFile& operator=(const MXMLStreamFile&) = delete;

  bool IsOpen() const { return m_file != nullptr; }
  size_t Read(void* buffer, size_t size) override;
  size_t Write(const void* buffer, size_t length) override;

 private:
  std::FILE* m_file;
};

}  // namespace orv
