#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace orv::inspect {

std::string Fixed(double value, int digits);
std::string Number(double value);  // up to six digits

// "1 error", "2 errors".
std::string Counted(size_t count, const char* what);

// Text from a file, fit for a terminal: no control characters.
std::string Printable(std::string_view text);

// Columns as wide as their widest cell in characters of UTF-8, two blanks apart; numbers to the
// right.
class TextTable {
 public:
  enum class Align { Left, Right };
  struct Column {
    const char* title;
    Align align = Align::Right;
  };

  explicit TextTable(std::vector<Column> columns);
  void AddRow(std::vector<std::string> cells);  // one for each column
  void Print(std::ostream& out, size_t indent) const;

 private:
  std::vector<Column> m_columns;
  std::vector<std::vector<std::string>> m_rows;  // the first one holds the titles
};

}  // namespace orv::inspect
