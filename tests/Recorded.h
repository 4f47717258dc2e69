#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "TemporaryFolder.h"

namespace orv {

// Holds a text against the one recorded in the tree. ORV_RECORD=1 records it anew, to be read then
// line by line.
inline void ExpectRecorded(const std::string& text, const std::string& path) {
  if (std::getenv("ORV_RECORD")) WriteContent(path, text);
  EXPECT_EQ(text, ContentOf(path)) << path;
}

}  // namespace orv
