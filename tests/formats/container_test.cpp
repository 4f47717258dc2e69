#include <gtest/gtest.h>
#include <sys/stat.h>

#include <thread>

#include "FileBytes.h"
#include "TemporaryFolder.h"
#include "formats/ChunkReader.h"
#include "formats/ChunkStream.h"

namespace orv {
namespace {

TEST(Container, KindIsInTheFirstTwelveBytes) {
  const std::pair<const char*, FileKind> cases[] = {{"QIRF 0 IDXM", FileKind::IndexedMesh},
                                                    {"QIRF 9 ANIM 0", FileKind::Animation},
                                                    {"QIRF 0 ELSE", FileKind::Unknown},
                                                    {"ELSE 0 IDXM", FileKind::Unknown},
                                                    {"QIRF 0", FileKind::Unknown}};
  for (const auto& [listing, kind] : cases) EXPECT_EQ(KindOf(FileOf(listing)), kind) << listing;
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

// More than one step of the reading, and something that cannot tell its size.
TEST(Container, WholeFilesAndPipesAreRead) {
  const TemporaryFolder folder;
  const std::string content = std::string((size_t{2} << 20) + 1, 'x') + "end",
                    pipe = folder.File("p");
  std::string bytes = "before";
  ReadProblem problem;
  WriteContent(folder.File("a"), content);
  EXPECT_TRUE(ReadWholeFile(folder.File("a"), bytes, problem));
  EXPECT_TRUE(bytes == content);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] { WriteContent(pipe, "through a pipe"); });
  EXPECT_TRUE(ReadWholeFile(pipe, bytes, problem)) << problem.Message();
  writer.join();
  EXPECT_EQ(bytes, "through a pipe");
  EXPECT_FALSE(ReadWholeFile(folder.File("."), bytes, problem));
  EXPECT_EQ(problem.Message(), "Is a directory");
}

}  // namespace
}  // namespace orv
