#pragma once

#include <fstream>
#include <ios>
#include <ostream>
#include <string>

namespace orv {

// An output file that appears whole or not at all. What is written goes to a temporary file beside
// the target, and Commit renames that onto it; a stream destroyed without Commit leaves the target
// as it was. A device, and a target in a folder that takes no new file, is written directly.
//
// A stream remembers its failure: write on, and ask once, by Commit.
class ReplacingFile : public std::ostream {
 public:
  // mode: std::ios::binary, or std::ios::out for text. When the target cannot be written, the
  // stream is in its failed state from the start.
  ReplacingFile(const std::string& path, std::ios::openmode mode);
  ~ReplacingFile() override;

  // Closes the file and puts it in the target's place. False when anything has failed since the
  // opening; the target is then what it was, unless it could only be written directly.
  bool Commit();

  const std::string& FileName() const { return m_fileName; }      // as it was asked for
  const std::string& FailureReason() const { return m_failure; }  // in the system's words

 private:
  // Keeps the first error of the system, which a stream on its own forgets.
  class Buffer : public std::filebuf {
   public:
    int Error() const { return m_error; }
    bool Close();

   protected:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* bytes, std::streamsize count) override;
    int sync() override;
    pos_type seekoff(off_type offset, std::ios::seekdir from, std::ios::openmode which) override;
    pos_type seekpos(pos_type position, std::ios::openmode which) override;

   private:
    void Keep(bool failed);
    int m_error = 0;
  };

  void Fail(std::string reason);
  bool PutInPlace();
  bool WriteThrough();  // copies the temporary file into the target
  void RemoveTemporary();

  std::string m_fileName;
  std::string m_target;     // what is replaced: behind a link, the file it stands for
  std::string m_temporary;  // "" when the target is written directly
  std::ios::openmode m_mode;
  Buffer m_buffer;
  std::string m_failure;
};

}  // namespace orv
