#pragma once

#include <string>

namespace orv {

// Writes a file so that the one it replaces survives a full disk or a crash: write to
// WritePath(), close it, and Commit() once all of it has arrived. Without a Commit nothing has
// happened to the target.
//
//   FileReplacement file(path);
//   if (file.Reason().empty()) { ... write file.WritePath() ... ; if (good) file.Commit(); }
//   if (!file.Reason().empty()) report it
class FileReplacement {
 public:
  explicit FileReplacement(const std::string& path);
  ~FileReplacement();  // removes what was not committed
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;

  // Beside the target, under a name of its own; the target itself where that cannot be: a device,
  // or a folder that takes no new files. Native form, ready for a stream.
  const std::string& WritePath() const { return m_writePath; }

  // The system's reason why the target cannot be written, "" while all is well.
  const std::string& Reason() const { return m_reason; }

  // Gives the written file the target's name; where somebody holds the target open and the system
  // refuses, its bytes are copied into the target. Returns whether the target is complete.
  bool Commit();

 private:
  std::string m_target;
  std::string m_writePath;
  std::string m_reason;
  bool m_committed = false;
};

}  // namespace orv
