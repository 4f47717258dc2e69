#include <gtest/gtest.h>

#include <limits>

#include "FileBytes.h"
#include "formats/ChunkStream.h"

namespace orv {
namespace {

TEST(Container, NumbersAreLittleEndian) {
  EXPECT_EQ(BytesOf([](std::ostream& out) { WriteU32(out, 0x81020304u); }), "\x04\x03\x02\x81");
  EXPECT_EQ(BytesOf([](std::ostream& out) { WriteI32(out, -2); }), "\xFE\xFF\xFF\xFF");
  EXPECT_EQ(BytesOf([](std::ostream& out) { WriteF32(out, 1.0f); }),
            std::string("\0\0\x80\x3F", 4));
  const uint16_t shorts[] = {0x0102, 0x0304};
  EXPECT_EQ(BytesOf([&](std::ostream& out) {
              WriteRecords<uint16_t>(out, std::span<const uint16_t>(shorts));
            }),
            "\x02\x01\x04\x03");
}

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

TEST(Container, ParentLengthCoversTheWholeChild) {
  const std::string bytes = BytesOf([](std::ostream& out) {
    ChunkScope parent(out, "CHNK", 100);
    ChunkScope child(out, "GEOM", 201);
  });
  EXPECT_EQ(bytes, "CHNK" + LittleEndian(16) + LittleEndian(100) + "GEOM" + LittleEndian(4) +
                       LittleEndian(201));
}

TEST(Container, WritingGoesOnAtTheEndAfterAChunk) {
  const std::string bytes = BytesOf([](std::ostream& out) {
    RootScope root(out, "IDXM");
    { ChunkScope child(out, "INFO", 1); }
    WriteU32(out, 7);
  });
  EXPECT_EQ(bytes, "QIRF" + LittleEndian(20) + "IDXM" + Chunk("INFO", 1) + LittleEndian(7));
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
