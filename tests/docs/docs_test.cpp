// The tables in docs/ that are made from the code. ORV_RECORD=1 writes them anew.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "report/Messages.h"

namespace orv {
namespace {

// On one line.
std::string Code(std::string text) {
  std::ranges::replace(text, '\n', ' ');
  return "`" + text.substr(0, text.find_last_not_of(' ') + 1) + "`";
}

std::string MessagesTable() {
  constexpr const char* kSeverityNames[] = {"info", "warning", "error"};
  std::string table = "| code | severity | text |\n|---|---|---|\n";
  for (const Message& message : kMessages) {
    table += "| `" + std::string(message.code) + "` | " +
             kSeverityNames[static_cast<int>(message.severity)] + " | " + Code(TextOf(message)) +
             " |\n";
  }
  return table;
}

TEST(Docs, MessagesAreThoseOfTheCatalogue) {
  const std::string path = ORV_DOCS "/messages.md";
  std::ifstream in(path);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  const size_t begin = text.find("| code |");
  ASSERT_NE(begin, std::string::npos);
  const std::string table = MessagesTable();
  if (std::getenv("ORV_RECORD")) {
    std::ofstream(path) << text.substr(0, begin) + table;
  } else {
    EXPECT_EQ(text.substr(begin), table);
  }
}

}  // namespace
}  // namespace orv
