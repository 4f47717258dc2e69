#include <gtest/gtest.h>

#include "FileBytes.h"
#include "formats/ChunkStream.h"

namespace orv {
namespace {

TEST(Container, TextsArePaddedToFourBytesWithoutTerminator) {
  const std::pair<const char*, std::string> cases[] = {
      {"", LittleEndian(0)},
      {"a", LittleEndian(4) + std::string("a\0\0\0", 4)},
      {"bone", LittleEndian(4) + "bone"},
      {"spine", LittleEndian(8) + std::string("spine\0\0\0", 8)},
  };
  for (const auto& [text, bytes] : cases) {
    EXPECT_EQ(BytesOf([text = text](std::ostream& out) { WriteString(out, text); }), bytes) << text;
  }
}

// Takes what is written, and claims to be at the end of a file that large.
class HugeBuffer : public std::stringbuf {
 protected:
  pos_type seekoff(off_type, std::ios::seekdir, std::ios::openmode) override {
    return pos_type(m_position += std::streamoff{1} << 33);
  }
  pos_type seekpos(pos_type position, std::ios::openmode) override { return position; }

 private:
  std::streamoff m_position = 0;
};

TEST(Container, ChunkBeyondTheRangeOfItsLengthFailsTheStream) {
  HugeBuffer buffer;
  std::ostream out(&buffer);
  { ChunkScope chunk(out, "FRAM", 100); }
  EXPECT_TRUE(out.fail());
}

}  // namespace
}  // namespace orv
