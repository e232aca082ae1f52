// SPDX-License-Identifier: MIT
// fsStrSort in memory, in chunks and merge passes: exactly the lines read, collapsed as asked, no
// work file left. Input: the buffer byte (0: all), the mode (1: keep, 2: counts), the file.
#include <fskit/sort.h>

#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include "fuzz/support/fuzz_support.h"

namespace {

// The lines of each chunk as the chunk phase reads them: pieces of at most
// `buffer` bytes cut after their last line feed; a piece without one ends
// the reading. A line ends at its line feed or first NUL.
std::vector<std::vector<std::string>> chunksOf(std::string_view text, size_t buffer) {
  std::vector<std::vector<std::string>> chunks;
  for (size_t at = 0; at < text.size();) {
    std::string_view piece = text.substr(at, buffer);
    size_t last = piece.rfind('\n');
    if (last == std::string_view::npos) break;
    std::vector<std::string> lines;
    for (size_t begin = 0, end; begin <= last; begin = end + 1) {
      end = piece.find('\n', begin);
      std::string_view line = piece.substr(begin, end - begin);
      lines.emplace_back(line.substr(0, line.find('\0')));
    }
    chunks.push_back(std::move(lines));
    at += last + 1;
  }
  return chunks;
}

}  // namespace

FUZZ_TARGET(input) {
  const uint8_t bufferByte = takeByte(input), mode = takeByte(input);
  const bool keep = mode & 1, counts = mode & 2;
  // At most about 40 chunks: more than one merge pass, at a bearable cost.
  const long buffer = bufferByte == 0 ? 0 : std::max<long>(bufferByte, long(input.size() / 40) + 1);
  const std::string in = scratchFile("in"), out = scratchFile("out"), work = scratchFile("");
  writeBytes(in, input);
  std::filesystem::remove(out);
  long result = -1;
  const std::string printed = caughtStream(::stdout, [&] {
    result = fsStrSort(in.c_str(), out.c_str(), work.c_str(), buffer, keep, counts);
  });
  for (const auto &entry : std::filesystem::directory_iterator(work))
    FUZZ_CHECK(entry.path().filename().string().rfind("sort_", 0) != 0);  // no work file left
  FUZZ_CHECK(printed.ends_with("\n" + std::to_string(result) + " records written\n"));
  FUZZ_CHECK(!input.empty() || (result == 0 && !std::filesystem::exists(out)));

  const auto chunks = chunksOf(input, buffer == 0 ? input.size() : size_t(buffer));
  std::ifstream stream(out, std::ios::binary);  // no file: nothing written
  const std::string written{std::istreambuf_iterator<char>(stream), {}};
  std::vector<std::string> lines;  // the output's lines, read in one piece
  for (const auto &chunk : chunksOf(written, written.size())) lines = chunk;
  FUZZ_CHECK(long(lines.size()) == result && (written.empty() || written.back() == '\n'));
  std::vector<std::string> all;
  for (const auto &chunk : chunks) all.insert(all.end(), chunk.begin(), chunk.end());
  std::sort(all.begin(), all.end());
  // In order unless a line holds a byte below the line feed (the output holds the same bytes).
  const bool ordered =
      std::none_of(written.begin(), written.end(), [](char c) { return c > 0 && c < '\n'; });
  if (keep) {
    std::vector<std::string> sorted = lines;
    std::sort(sorted.begin(), sorted.end());
    FUZZ_CHECK(sorted == all && (!ordered || lines == all));
    return;
  }
  // Collapsed: every distinct non-empty line, with its count per chunk.
  std::set<std::string> distinct(all.begin(), all.end()), found;
  distinct.erase("");
  for (const std::string &line : lines) {
    std::string text = line;
    if (counts) {
      const size_t blank = line.rfind(' ');
      FUZZ_CHECK(blank != std::string::npos && std::atol(line.c_str() + blank + 1) >= 1);
      text = line.substr(0, blank);
    }
    FUZZ_CHECK(!text.empty());
    found.insert(text);
  }
  FUZZ_CHECK(found == distinct);
  if (chunks.size() == 1 && ordered) {  // one chunk: exactly the distinct lines in order
    std::map<std::string, long> occurrences;
    for (const std::string &line : chunks[0]) ++occurrences[line];
    std::vector<std::string> expected;
    for (const auto &[line, count] : occurrences)
      if (!line.empty()) expected.push_back(counts ? line + " " + std::to_string(count) : line);
    FUZZ_CHECK(lines == expected);
  }
}
