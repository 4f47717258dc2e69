#include "hostcore.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "bmmlib.h"
#include "units.h"

namespace {

class FilmInInches : public orv::HostCore {
 public:
  double MasterScale(int unitCode) override { return unitCode == 5 ? 0.0254 : -1; }
  int TicksPerFrame() override { return 200; }
  int FrameRate() override { return 24; }
  bool FindBitmap(const char* name, char* found, size_t size) override {
    const std::string full = "/maps/" + std::string(name);
    if (full == "/maps/missing.tga" || full.size() >= size) return false;
    std::memcpy(found, full.c_str(), full.size() + 1);
    return true;
  }
};

TEST(HostCore, AnswersForTheFreeFunctionsWhileItIsSet) {
  FilmInInches core;
  BitmapInfo wall, missing;
  wall.SetName("wall.tga");
  missing.SetName("missing.tga");

  orv::SetHostCore(&core);
  EXPECT_EQ(GetMasterScale(5), 0.0254);
  EXPECT_EQ(GetTicksPerFrame(), 200);
  EXPECT_EQ(GetFrameRate(), 24);
  EXPECT_TRUE(BMMGetFullFilename(&wall));
  EXPECT_STREQ(wall.Name(), "/maps/wall.tga");
  EXPECT_FALSE(BMMGetFullFilename(&missing));
  EXPECT_STREQ(missing.Name(), "missing.tga");

  orv::SetHostCore(nullptr);
  EXPECT_EQ(GetMasterScale(5), 1.0);
  EXPECT_EQ(GetTicksPerFrame(), 160);
  EXPECT_EQ(GetFrameRate(), 30);
  EXPECT_FALSE(BMMGetFullFilename(&wall));
}

}  // namespace
