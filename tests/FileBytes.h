#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cctype>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

// Files as the tests write them down, without the code under test.
namespace orv {

inline std::string LittleEndian(uint32_t value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
  return bytes;
}

// The bytes of a listing: "name" is a text, NAME a tag, 1.0 an f32, 1s a u16, any other number 32
// bits wide; "{" stands for a length, of what follows up to its "}". "#" begins a comment.
inline std::string FileOf(const std::string& listing) {
  std::string bytes;
  std::vector<size_t> open;
  std::istringstream lines(listing);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    for (std::string word; words >> word;) {
      if (word == "{") {
        open.push_back(bytes.size());
        bytes += LittleEndian(0);
      } else if (word == "}") {
        const size_t length = bytes.size() - open.back() - 4;
        bytes.replace(open.back(), 4, LittleEndian(static_cast<uint32_t>(length)));
        open.pop_back();
      } else if (word == "@") {
        continue;
      } else if (word.front() == '"') {
        std::string text = word.substr(1, word.size() - 2);
        while (text.size() % 4) text += '\0';
        bytes += LittleEndian(static_cast<uint32_t>(text.size())) + text;
      } else if (std::isupper(static_cast<unsigned char>(word.front()))) {
        bytes += word;
      } else if (word.find('.') != word.npos) {
        bytes += LittleEndian(std::bit_cast<uint32_t>(std::stof(word)));
      } else {
        const auto value = static_cast<uint32_t>(std::stoll(word, nullptr, 0));
        bytes += LittleEndian(value).substr(0, word.back() == 's' ? 2 : 4);
      }
    }
  }
  return bytes;
}

// Where the "@" of a listing stands in the file, as the readers say it; "" without one.
inline std::string PlaceIn(const std::string& listing) {
  if (listing.find('@') == listing.npos) return "";
  const size_t offset = FileOf(listing.substr(0, listing.find('@'))).size();
  return " (at byte " + std::to_string(offset) + ")";
}

// The listing with one place of it changed: what is changed stands in it once.
inline std::string Edited(std::string listing, const std::string& from, const std::string& to) {
  const size_t at = listing.find(from);
  EXPECT_TRUE(at != listing.npos && listing.find(from, at + 1) == listing.npos) << from;
  return listing.replace(at, from.size(), to);
}

// Holds what is said of a listing after each edit of a table against the table: in each line what
// stands in the listing, what takes its place, and what is said, parted by "=>". The place is in
// the words, or the "@" of the edit.
template <typename Refusal>
void ExpectRefusals(const std::string& listing, const std::string& table, Refusal refusal) {
  std::istringstream lines(table.substr(1));
  for (std::string line; std::getline(lines, line);) {
    const size_t to = line.find(" => "), message = line.rfind(" => ");
    const std::string edited =
        Edited(listing, line.substr(0, to), line.substr(to + 4, message - to - 4));
    EXPECT_EQ(refusal(FileOf(edited)), line.substr(message + 4) + PlaceIn(edited)) << line;
  }
}

// Every beginning of a file is refused; so is one whose root length says that it ends there, unless
// it lacks but what may be missing, from an offset on.
template <typename Refusal>
void ExpectPrefixesRefused(const std::string& bytes, size_t optionalStart, Refusal refusal) {
  for (size_t size = 0; size < bytes.size(); ++size) {
    std::string prefix = bytes.substr(0, size);
    EXPECT_TRUE(refusal(prefix).ends_with(")")) << size;
    if (size < 12) continue;
    prefix.replace(4, 4, LittleEndian(static_cast<uint32_t>(size - 8)));
    const std::string message = refusal(prefix);
    EXPECT_TRUE(message.starts_with("QIRF") || (message == "accepted" && size >= optionalStart))
        << message;
  }
}

// What a function writes to its stream.
template <typename Function>
std::string BytesOf(Function&& write) {
  std::ostringstream out;
  write(out);
  return out.str();
}

}  // namespace orv
