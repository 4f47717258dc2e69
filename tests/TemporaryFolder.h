#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace orv {

// A new folder for the length of a test.
class TemporaryFolder {
 public:
  TemporaryFolder()
      : m_path(std::filesystem::temp_directory_path() /
               ("orv-test-" + std::to_string(std::random_device{}()))) {
    std::filesystem::create_directories(m_path);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string File(const std::string& name) const { return (m_path / name).string(); }

  // How many files are in it.
  size_t Count() const {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(m_path),
                                             std::filesystem::directory_iterator()));
  }

 private:
  std::filesystem::path m_path;
};

inline std::string ContentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void WriteContent(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

}  // namespace orv
