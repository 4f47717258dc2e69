#include "inspect/Text.h"

#include <algorithm>
#include <cstdio>

namespace orv::inspect {

namespace {

// Terminal columns: a character of several bytes in UTF-8 takes one.
size_t Width(std::string_view text) {
  return static_cast<size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

}  // namespace

std::string Fixed(double value, int digits) {
  char text[352];
  std::snprintf(text, sizeof(text), "%.*f", digits, value);
  return text;
}

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%g", value);
  return text;
}

std::string Counted(size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string Printable(std::string_view text) {
  std::string printable(text);
  for (char& c : printable) {
    if (static_cast<unsigned char>(c) < ' ' || c == 127) c = '?';
  }
  return printable;
}

TextTable::TextTable(std::vector<Column> columns) : m_columns(std::move(columns)) {
  m_rows.emplace_back();
  for (const Column& column : m_columns) m_rows.front().push_back(column.title);
}

void TextTable::AddRow(std::vector<std::string> cells) {
  cells.resize(m_columns.size());
  m_rows.push_back(std::move(cells));
}

void TextTable::Print(std::ostream& out, size_t indent) const {
  std::vector<size_t> widths(m_columns.size(), 0);
  for (const auto& row : m_rows) {
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  for (const auto& row : m_rows) {
    std::string line(indent, ' ');
    for (size_t i = 0; i < row.size(); ++i) {
      const std::string padding(widths[i] - Width(row[i]), ' ');
      if (i > 0) line += "  ";
      line += m_columns[i].align == Align::Right ? padding + row[i] : row[i] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
  }
}

}  // namespace orv::inspect
