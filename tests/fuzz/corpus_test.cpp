#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "Targets.h"

namespace orv {
namespace {

struct Target {
  const char* name;
  void (*run)(std::string_view);
};

class Corpus : public testing::TestWithParam<Target> {};

// What a target finds wrong ends the program, with the file's name before it.
TEST_P(Corpus, EveryFileAndWhatIsLeftWhenItIsCutOff) {
  int files = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::string(ORV_CORPUS "/") + GetParam().name)) {
    std::cout << entry.path() << std::endl;
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(in), {});
    GetParam().run(bytes);
    const size_t step = bytes.size() <= 256 ? 1 : 1 + bytes.size() / 40;
    for (size_t size = 0; size < bytes.size(); size += step) {
      GetParam().run(std::string_view(bytes).substr(0, size));
    }
    ++files;
  }
  EXPECT_GE(files, 10);
}

INSTANTIATE_TEST_SUITE_P(Targets, Corpus,
                         testing::Values(Target{"IndexedMesh", FuzzIndexedMesh},
                                         Target{"Animation", FuzzAnimation}, Target{"Xml", FuzzXml},
                                         Target{"Events", FuzzEvents}),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace
}  // namespace orv
