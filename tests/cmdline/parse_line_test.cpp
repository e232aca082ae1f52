// SPDX-License-Identifier: MIT
// kwaCmdLnPrts: examples and generated lines against a plain model; kwaCmdLnStr, kwaArrayAlloc.
#include <fskit/cmdline.h>
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

// The sanitizer's allocator answers an impossible request with null, as malloc does.
extern "C" const char *__asan_default_options() { return "allocator_may_return_null=1"; }

namespace {

const std::string kLabel = "%kwaCmdLnPrts, ";

struct Outcome {
  int32_t result = 0;
  std::string parts, err;
};

// The parts as one text, "[arg] [arg], /name /name=[value]"; after a stop only the counts.
struct Found {
  std::vector<std::string> args, names;
  std::vector<std::optional<std::string>> values;
  std::string marks;
  std::string render(bool stopped) const {
    auto count = [](size_t n) { return std::to_string(n); };
    if (stopped) return "stop args " + count(args.size()) + " quals " + count(names.size());
    std::string out;
    for (size_t i = 0; i < args.size(); ++i) out += "[" + args[i] + "]" + marks[i];
    for (size_t i = 0; i < names.size(); ++i)
      out += "/" + names[i] + (values[i] ? "=[" + *values[i] + "]" : "");
    return out;
  }
};

Outcome parseWithLibrary(const std::string &line, bool withErr = true) {
  // Exactly the line's size on the heap, so the sanitizers see any access outside it.
  std::vector<char> copy(line.begin(), line.end());
  copy.push_back('\0');
  KwaCmdLnParts parts;
  Outcome out;
  auto run = [&] { out.result = kwaCmdLnPrts(copy.data(), &parts); };
  if (withErr) out.err = fskit::test::captureStderr(run); else run();
  bool stopped = out.result != 0 || parts.nArgs > KWA_MAX_ARGS || parts.nQuals > KWA_MAX_QUALS;
  Found found;
  found.args.resize(size_t(parts.nArgs));
  found.names.resize(size_t(parts.nQuals));
  found.values.resize(size_t(parts.nQuals));
  auto text = [&](const char *p) {
    EXPECT_TRUE(p >= copy.data() && p < copy.data() + copy.size()) << line;
    return std::string(p);
  };
  for (int i = 0; i < parts.nArgs && !stopped; ++i) {
    found.args[size_t(i)] = text(parts.args[i]);
    found.marks += parts.argEnds[i];
  }
  for (int i = 0; i < parts.nQuals && !stopped; ++i) {
    found.names[size_t(i)] = text(parts.qualNames[i]);
    if (parts.qualValues[i] != nullptr) found.values[size_t(i)] = text(parts.qualValues[i]);
  }
  std::string unused(parts.argEnds + std::min(parts.nArgs, KWA_MAX_ARGS),
                     parts.argEnds + KWA_MAX_ARGS);
  EXPECT_EQ(unused.find_first_not_of(' '), std::string::npos) << line;
  out.parts = found.render(stopped);
  return out;
}

// The plain implementation, one character at a time.
Outcome parseWithModel(const std::string &line) {
  enum Mode { ARG, NAME, VALUE } mode = ARG, kind = ARG;
  bool token = false, quote = false, list = false;
  Found found;
  std::string *text = nullptr;  // what the token still grows; none after its closing quote
  size_t quoted = 0;            // where the open quote's text starts in the line
  Outcome out;
  auto stop = [&](size_t at, const std::string &err) {
    out.result = at < line.size() ? static_cast<signed char>(line[at]) : 0;
    out.err = kLabel + err;
    out.parts = found.render(true);
    return out;
  };
  auto invalid = [&](size_t at) { return stop(at, "Invalid delimiter " + line.substr(at) + "\n"); };
  auto start = [&](size_t at) {  // a token in the current mode; false when a limit refuses it
    if (mode == ARG) {
      found.args.emplace_back();
      found.marks += ' ';
      text = &found.args.back();
    } else if (mode == NAME) {
      found.names.emplace_back();
      found.values.emplace_back();
      text = &found.names.back();
    } else {
      text = &found.values.back().emplace();
    }
    if (found.args.size() > 20) stop(at, "Exceeded maximum number of arguments.\n");
    if (found.names.size() > 50) stop(at, "Exceeded maximum number of qualifiers.\n");
    kind = mode;
    token = true;
    return out.err.empty();
  };
  for (size_t i = 0; i < line.size(); ++i) {
    char c = line[i];
    if (quote) {
      if (c != '"') text->push_back(c);
      else if (i + 1 < line.size() && line[i + 1] == '"') text->push_back(line[++i]);
      else quote = false, text = nullptr;
    } else if (list) {
      text->push_back(c);
      if (c == ')') list = false, mode = ARG;
    } else if (c == ' ' || c == '\t') {
      if (token) mode = ARG;
      token = false;
    } else if (c == '"') {
      if (token || mode == NAME) return invalid(i);
      if (!start(i + 1)) return out;
      quote = true;
      quoted = i + 1;
    } else if (c == '(') {
      if (token || mode != VALUE) return invalid(i);
      start(i);
      text->push_back(c);
      list = true;
    } else if (c == ',' && token && kind == ARG) {
      found.marks.back() = ',';
      token = false, mode = ARG;
    } else if (c == '/') {
      token = false, mode = NAME;
    } else if (c == '=' && kind != NAME) {
      return invalid(i);
    } else if ((c == ':' || c == '=') && kind == NAME) {
      token = false, mode = VALUE;
    } else if (token) {
      if (text) text->push_back(c);
    } else if (c != ',' && c != ':') {
      if (!start(i)) return out;
      text->push_back(c);
    }
  }
  if (quote) {
    // The open text is not terminated: the line's last bytes follow, one per collapsed "" pair.
    *text += line.substr(quoted + text->size());
    out.err = kLabel + "Unmatched quoted string.\n";
  } else if (list) out.err = kLabel + "Unterminated list.\n";
  out.parts = found.render(false);
  return out;
}

std::string repeat(const std::string &piece, int n) {
  std::string out;
  while (n-- > 0) out += piece;
  return out;
}

}  // namespace

TEST(CommandLine, ExamplesAndEdgeCases) {
  const struct {
    std::string line;
    int32_t result;
    std::string parts, err;
  } cases[] = {
      {"copy a.dat,b.dat /log=out.txt /verbose", 0,
       "[copy] [a.dat],[b.dat] /log=[out.txt]/verbose", ""},
      {"/list=(a, b c) x", 0, "[x] /list=[(a, b c)]", ""},
      {"\"say \"\"hi\"\"\"", 0, "[say \"hi\"] ", ""},
      {"a=b", '=', "stop args 1 quals 0", "Invalid delimiter =b\n"},
      {"ab\"c\"", '"', "stop args 1 quals 0", "Invalid delimiter \"c\"\n"},
      {"/a/b /c=x/d /e,f=g,h", 0, "/a/b/c=[x]/d/e,f=[g,h]", ""},
      {"/q=(a", 0, "/q=[(a]", "Unterminated list.\n"},
      {repeat("a ", 20) + "\xe9", -23, "stop args 21 quals 0",
       "Exceeded maximum number of arguments.\n"},
      {repeat("/a", 50) + "/z", 'z', "stop args 0 quals 51",
       "Exceeded maximum number of qualifiers.\n"},
      // An open quote had a terminator written where its copy ended, cutting off the last bytes.
      {"\"a\"\"b", 0, "[a\"bb] ", "Unmatched quoted string.\n"},
      {"/q=\"x\"\"\"\"y", 0, "/q=[x\"\"y\"y]", "Unmatched quoted string.\n"},
      {"x \"ab", 0, "[x] [ab] ", "Unmatched quoted string.\n"},
  };
  for (const auto &c : cases) {
    Outcome out = parseWithLibrary(c.line);
    EXPECT_EQ(out.result, c.result) << c.line;
    EXPECT_EQ(out.parts, c.parts) << c.line;
    EXPECT_EQ(out.err, c.err.empty() ? "" : kLabel + c.err) << c.line;
  }
  KwaCmdLnParts parts;
  EXPECT_EQ(kwaCmdLnPrts(nullptr, &parts) + parts.nArgs + parts.nQuals, 0);
}

TEST(CommandLine, GeneratedLinesAgreeWithPlainImplementation) {
  // Pieces reaching the 20 and 50 limits; a subset per line makes long unstopped lines common.
  const std::vector<std::string> pieces = {" ", "\t", "\"", ",", "(", ")", "/", ":", "=", "a", "b",
                                           "\n", "\x80", "\xff", "/a", "/b=", "a,"};
  std::mt19937 random(20240611);
  std::vector<std::string> lines(20000);
  for (std::string &line : lines) {
    std::vector<std::string> subset = {"a"};
    for (const std::string &piece : pieces)
      if (random() % 2) subset.push_back(piece);
    for (size_t n = random() % 251; n > 0; --n) line += subset[random() % subset.size()];
  }
  std::vector<Outcome> actual;
  std::string err = fskit::test::captureStderr([&] {
    for (const std::string &line : lines) actual.push_back(parseWithLibrary(line, false));
  });
  size_t offset = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    Outcome expected = parseWithModel(lines[i]);
    ASSERT_EQ(actual[i].result, expected.result) << "[" << lines[i] << "]";
    ASSERT_EQ(actual[i].parts, expected.parts) << "[" << lines[i] << "]";
    ASSERT_EQ(err.substr(offset, expected.err.size()), expected.err) << "[" << lines[i] << "]";
    offset += expected.err.size();
  }
  EXPECT_EQ(err.size(), offset);
}

TEST(JoinArguments, JoinsWithSingleBlanksAndReportsSize) {
  const struct {
    std::vector<const char *> argv;
    std::string line;
    int32_t length;  // -5: not written
  } cases[] = {{{"prog", "a b", "c"}, "a b c", 7}, {{"prog", "", nullptr, "x"}, "  x", 5},
               {{"prog"}, "", -5},                  {{}, "", -5}};
  for (const auto &c : cases) {
    int32_t length = -5;
    char *line = kwaCmdLnStr(int32_t(c.argv.size()), const_cast<char **>(c.argv.data()), &length);
    EXPECT_EQ(std::string(line), c.line);
    EXPECT_EQ(length, c.length) << c.line;
    fsFree(&line);
  }
  // 2100 arguments of 1 MiB: more than a 32-bit length can report.
  std::string piece(1 << 20, 'x');
  std::vector<char *> argv(2101, piece.data());
  EXPECT_EXIT(kwaCmdLnStr(int32_t(argv.size()), argv.data(), nullptr), testing::ExitedWithCode(1),
              "^Out of memory in kwaCmdLnStr\\(\\)\n$");
}

TEST(ArrayAlloc, GrowsByElementCountAndNeverShrinks) {
  auto shape = [](const KwaArray &a) { return std::vector<int64_t>{a.count, a.capacity, a.elemSize}; };
  // A negative count gave 0 and changed nothing; it sets the count and keeps the buffer.
  KwaArray none{0, 0, 0, 0, nullptr};
  EXPECT_EQ(kwaArrayAlloc(&none, -1, 8), 0);
  EXPECT_EQ(shape(none), std::vector<int64_t>({-1, 0, 0}));
  KwaArray array{77, 0, 0, 0, nullptr};
  ASSERT_EQ(kwaArrayAlloc(&array, 10, 4), 1);
  std::memset(array.data, 1, 40);  // the whole buffer is there
  void *first = array.data;
  EXPECT_EQ(kwaArrayAlloc(&array, 5, 4) + kwaArrayAlloc(&array, 0, 4), 2);
  EXPECT_EQ(shape(array), std::vector<int64_t>({5, 10, 4}));
  EXPECT_EQ(kwaArrayAlloc(&array, -3, 8), 1);
  EXPECT_EQ(shape(array), std::vector<int64_t>({-3, 10, 4}));
  EXPECT_EQ(array.data, first);
  ASSERT_EQ(kwaArrayAlloc(&array, 12, 2), 1);
  std::memset(array.data, 2, 24);
  EXPECT_EQ(shape(array), std::vector<int64_t>({12, 12, 2}));
  EXPECT_EQ(array.user, 77);
  // A buffer that cannot exist: the new sizes are kept, the buffer is gone.
  EXPECT_EQ(kwaArrayAlloc(&array, INT32_MAX, UINT32_MAX), 0);
  EXPECT_EQ(array.data, nullptr);
  EXPECT_EQ(shape(array), std::vector<int64_t>({INT32_MAX, INT32_MAX, UINT32_MAX}));
}
