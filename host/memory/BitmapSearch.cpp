#include "host/memory/BitmapSearch.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <vector>

#include "platform/ExString.h"

namespace orv::host {
namespace {

namespace fs = std::filesystem;

bool IsFile(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

std::vector<std::string> SplitPath(std::string_view name) {
  std::vector<std::string> parts;
  while (!name.empty()) {
    const size_t end = std::min(name.find_first_of("/\\"), name.size());
    if (end > 0) parts.emplace_back(name.substr(0, end));
    name.remove_prefix(std::min(end + 1, name.size()));
  }
  return parts;
}

// Of several that differ in case only, the first by byte order.
std::optional<fs::path> FindIgnoringCase(fs::path folder, std::span<const std::string> parts) {
  for (const std::string& part : parts) {
    if (part == "." || part == "..") {
      folder /= part;
      continue;
    }
    std::string best;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
      const std::string name = entry->path().filename().string();
      if (EqualIgnoringCase(name, part) && (best.empty() || name < best)) best = name;
    }
    if (best.empty()) return std::nullopt;
    folder /= best;
  }
  return IsFile(folder) ? std::optional(folder) : std::nullopt;
}

std::optional<fs::path> FindExactly(fs::path folder, std::span<const std::string> parts) {
  for (const std::string& part : parts) folder /= part;
  return IsFile(folder) ? std::optional(folder) : std::nullopt;
}

std::optional<std::string> FindIn(const std::string& folder,
                                  const std::vector<std::string>& parts) {
  for (const auto find : {FindExactly, FindIgnoringCase}) {
    for (size_t skipped = 0; skipped < parts.size(); ++skipped) {
      const auto found = find(fs::path(folder), std::span(parts).subspan(skipped));
      if (found) return found->string();
    }
  }
  return std::nullopt;
}

}  // namespace

std::string WithoutPercentCodes(const std::string& name) {
  const auto digit = [](char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
  };
  std::string result;
  for (size_t i = 0; i < name.size(); ++i) {
    if (name[i] == '%' && i + 2 < name.size() && digit(name[i + 1]) >= 0 &&
        digit(name[i + 2]) >= 0) {
      result += static_cast<char>(digit(name[i + 1]) * 16 + digit(name[i + 2]));
      i += 2;
    } else {
      result += name[i];
    }
  }
  return result;
}

std::optional<std::string> FindBitmapFile(const std::string& name,
                                          std::span<const std::string> folders) {
  if (name.empty() || name.find('\0') != std::string::npos) return std::nullopt;
  if (fs::path(name).is_absolute() && IsFile(name)) return name;
  for (const std::string& spelling : {name, WithoutPercentCodes(name)}) {
    const std::vector<std::string> parts = SplitPath(spelling);
    for (const std::string& folder : folders) {
      if (const auto found = FindIn(folder, parts)) return found;
    }
    if (spelling.find('%') == std::string::npos) break;
  }
  return std::nullopt;
}

}  // namespace orv::host
