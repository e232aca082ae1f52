// SPDX-License-Identifier: MIT
// Writes the tool's manual page: the template with its @VERSION@ replaced
// and its @COMMANDS@ line replaced by one section per command, made from the
// command table, so the page says what `fskit COMMAND --help` says.
//
//   make_manpage TEMPLATE OUTPUT VERSION
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>

#include "tools/command.h"

namespace {

// Text as roff reads it literally: backslashes escaped, dashes as minus
// signs (so options can be searched for and copied), and a line that would
// start with a control character protected.
std::string roff(std::string_view text) {
  std::string out;
  if (!text.empty() && (text.front() == '.' || text.front() == '\'')) out = "\\&";
  for (char c : text) {
    if (c == '\\') out += "\\e";
    else if (c == '-') out += "\\-";
    else out += c;
  }
  return out;
}

bool startsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// "usage: fskit x" and "       fskit x" both give "fskit x".
std::string_view afterLabel(std::string_view line) {
  size_t start = line.find_first_not_of(' ', line.find(' '));
  return start == std::string_view::npos ? std::string_view() : line.substr(start);
}

// A help text is usage lines ("usage: ..." and lines indented under it), a
// description, and examples ("example: ..." and lines indented under it).
// The description is left to roff to fill; a line that starts with blanks
// (an item of a list or table) keeps a line of its own.
void writeCommand(std::ostream &out, const fskit::tool::Command &command) {
  std::string summary = roff(command.summary);
  if (!summary.empty() && summary[0] >= 'a' && summary[0] <= 'z')
    summary[0] = char(summary[0] - 'a' + 'A');
  out << ".SS " << roff(command.name) << "\n" << summary << ".\n.PP\n.nf\n";
  std::istringstream help(command.help);
  std::string line, description, examples;
  enum { usage, text, example } part = usage;
  while (std::getline(help, line)) {
    bool indented = startsWith(line, " ");
    if (startsWith(line, "usage: ") || (part == usage && indented)) {
      out << ".B " << roff(afterLabel(line)) << "\n";
    } else if (startsWith(line, "example: ") || (part == example && indented)) {
      part = example;
      examples += "\\fB" + roff(afterLabel(line)) + "\\fR\n";
    } else {
      part = text;
      description += roff(line) + (indented ? "\n.br\n" : "\n");
    }
  }
  out << ".fi\n.PP\n" << description;
  if (!examples.empty()) out << ".PP\nExample:\n.RS 4\n.nf\n" << examples << ".fi\n.RE\n";
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: make_manpage TEMPLATE OUTPUT VERSION\n");
    return 2;
  }
  std::ifstream in(argv[1]);
  std::ostringstream page;
  std::string line;
  while (std::getline(in, line)) {
    if (line == "@COMMANDS@") {
      for (const auto &command : fskit::tool::commands()) writeCommand(page, command);
    } else {
      page << replaced(line, "@VERSION@", argv[3]) << "\n";
    }
  }
  if (!in.eof()) {
    std::fprintf(stderr, "make_manpage: cannot read %s\n", argv[1]);
    return 1;
  }
  std::ofstream out(argv[2]);
  out << page.str();
  out.close();
  if (!out) {
    std::fprintf(stderr, "make_manpage: cannot write %s\n", argv[2]);
    return 1;
  }
  return 0;
}
