// SPDX-License-Identifier: MIT
// kwaCmdLnPrts: examples and generated lines against a plain model; kwaCmdLnStr, kwaArrayAlloc;
// tag files, tables, lookups and comparators; the tool's cmdline and tags commands.
#include <fskit/cmdline.h>
#include <fskit/frame.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/test_support.h"

using fskit::test::runTool;

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

struct Table {
  int32_t count = 0, capacity = 0;
  KwaTagEntry *entries = nullptr;
  ~Table() { std::free(entries); }

  int32_t add(const std::string &tag, const std::string &label) {
    return kwaAddToTbl(tag.c_str(), label.c_str(), &count, &capacity, &entries);
  }
  void read(std::string text, int32_t mode) {
    std::FILE *stream = fskit::test::streamOf(text);
    EXPECT_EQ(kwaReadTags(stream, mode, &count, &capacity, &entries), 1);
    EXPECT_EQ(kwaReadTags(stream, mode, &count, &capacity, &entries), 1);  // at its end already
    std::fclose(stream);
  }
  // "TAG=label;" for every record.
  std::string pairs() const {
    std::string out;
    for (int32_t i = 0; i < count; ++i) {
      EXPECT_EQ(entries[i].labelLen, int32_t(std::strlen(entries[i].label)));
      out += std::string(entries[i].tag) + "=" + entries[i].label + ";";
    }
    return out;
  }
};

}  // namespace

TEST(CommandLine, ExamplesAndEdgeCases) {
  const std::tuple<std::string, int32_t, std::string, std::string> cases[] = {
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
  for (const auto &[line, result, parts, err] : cases) {
    Outcome out = parseWithLibrary(line);
    EXPECT_EQ(out.result, result) << line;
    EXPECT_EQ(out.parts, parts) << line;
    EXPECT_EQ(out.err, err.empty() ? "" : kLabel + err) << line;
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
  // The arguments, their line and the length reported (-5: not written).
  const std::tuple<std::vector<const char *>, std::string, int32_t> cases[] = {
      {{"prog", "a b", "c"}, "a b c", 7}, {{"prog", "", nullptr, "x"}, "  x", 5},
      {{"prog"}, "", -5},                  {{}, "", -5}};
  for (const auto &[args, joined, reported] : cases) {
    int32_t length = -5;
    char *line = kwaCmdLnStr(int32_t(args.size()), const_cast<char **>(args.data()), &length);
    EXPECT_EQ(std::string(line), joined);
    EXPECT_EQ(length, reported) << joined;
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

TEST(TagFile, ReadsPairsAndKeywords) {
  // Past a 254-character read a line goes on as a new one (was skipped), a comment's rest too.
  const std::string file = "ms Mass spectrum\n! ignored\n\n  uv    Ultra   violet  \n"
                           "MASS Mass range ! scanned\nonlytag\n\tTab\tlabel\r\n!" +
                           std::string(260, 'c') + " TAIL comment\n" + std::string(70, 't') + " " +
                           std::string(353, 'l') + " ZZ tail\nT " + std::string(252, 'a') +
                           "\nU v\nlast line";
  Table plain, keywords;
  plain.read(file, 0);
  EXPECT_EQ(plain.pairs(), "MS=Mass spectrum;UV=Ultra violet;MASS=Mass range;TAB=label;"
                           "CCCCCCC=TAIL comment;" + std::string(63, 'T') + "=" +
                               std::string(63, 'l') + ";" + std::string(63, 'L') +
                               "=ZZ tail;T=" + std::string(63, 'a') + ";U=v;LAST=line;");
  keywords.read(file, 1);
  EXPECT_EQ(keywords.pairs(), "MS=##MASS SPECTRUM=;UV=##ULTRA VIOLET=;MASS=##MASS RANGE=;"
                              "TAB=##LABEL=;CCCCCCC=##TAIL COMMENT=;" + std::string(63, 'T') +
                                  "=##" + std::string(60, 'L') + "=;" + std::string(63, 'L') +
                                  "=##ZZ TAIL=;T=##" + std::string(60, 'A') + "=;U=##V=;LAST=##LINE=;");
  // Records are compared whole: no bytes after the NULs from an earlier, longer line's buffers.
  KwaTagEntry expected{"U", "v", 1};
  EXPECT_EQ(std::memcmp(&plain.entries[8], &expected, sizeof expected), 0);
}

TEST(TagTable, AddsLooksUpAndGrowsByTen) {
  Table table;
  EXPECT_EQ(table.add("ms", "Mass spectrum") + table.add("uv", "Ultra violet"), 3);
  EXPECT_EQ(table.add("MS", "mass spectrum extra"), 2);  // its label's first match has tag MS
  EXPECT_EQ(table.add("MX", "mass spectrum extra") + table.add("", "x") + table.add("x", ""), 9);
  char text[64];
  EXPECT_EQ(kwaLabelToTag(table.count, table.entries, "MASS SPECTRUM", text), 0);
  EXPECT_STREQ(text, "MS");
  EXPECT_EQ(kwaLabelToTag(table.count, table.entries, "ultra", text), -1);  // shorter
  EXPECT_STREQ(text, "");
  EXPECT_EQ(kwaTagToLabel(table.count, table.entries, "UV", text), 1);
  EXPECT_STREQ(text, "Ultra violet");
  EXPECT_EQ(kwaTagToLabel(table.count, table.entries, "ms", text), -1);
  EXPECT_STREQ(text, "");
  for (int i = 3; i < 21; ++i) {
    EXPECT_EQ(table.add("t" + std::to_string(i), "l" + std::to_string(i)), i + 1);
    EXPECT_EQ(table.capacity, i < 10 ? 10 : i < 20 ? 20 : 30);
  }
  EXPECT_EQ(table.pairs().substr(0, 50), "MS=Mass spectrum;UV=Ultra violet;MX=mass spectrum ");
  EXPECT_EQ(std::string(table.entries[20].tag) + table.entries[20].label, "T20l20");

  // A count beyond the block changes nothing; a table that cannot grow is released, not leaked.
  int32_t count = 1, capacity = 10;
  KwaTagEntry *none = nullptr;
  EXPECT_EQ(kwaAddToTbl("A", "x", &count, &capacity, &none), 0);
  auto *full = static_cast<KwaTagEntry *>(std::calloc(1, sizeof(KwaTagEntry)));
  *full = KwaTagEntry{"A", "x", 1};
  count = capacity = INT32_MAX - 5;
  EXPECT_EQ(kwaAddToTbl("B", "x", &count, &capacity, &full), 0);
  EXPECT_EQ(full, nullptr);
}

TEST(TagTable, ComparatorsOrderByTagOrLabelFirst) {
  KwaTagEntry entries[] = {{"B", "a", 1}, {"A", "y", 1}, {"A", "x", 1}, {"\x80", "0", 1}};
  auto sorted = [&](int (*compare)(const void *, const void *)) {
    std::qsort(entries, 4, sizeof(KwaTagEntry), compare);
    std::string order;
    for (const KwaTagEntry &e : entries) order += std::string(e.tag) + e.label + " ";
    return order;
  };
  EXPECT_EQ(sorted(kwaTblTagCmp), "Ax Ay Ba \x80" "0 ");
  EXPECT_EQ(sorted(kwaTblLblCmp), "\x80" "0 Ba Ax Ay ");
  EXPECT_EQ(kwaTblTagCmp(&entries[0], &entries[1]) - kwaTblTagCmp(&entries[1], &entries[0]), 2);
  // A null record (once read through) comes first.
  for (auto compare : {kwaTblTagCmp, kwaTblLblCmp})
    EXPECT_EQ(std::to_string(compare(nullptr, nullptr)) + std::to_string(compare(nullptr, entries)) +
                  std::to_string(compare(entries, nullptr)),
              "0-11");
}

TEST(CmdlineTool, PrintsPartsOrStopCharacter) {
  EXPECT_EQ(runTool({"cmdline", "copy", "a.dat,b.dat", "/log=out.txt /verbose"}).out,
            "part\ttext\tvalue\tend\nargument\tcopy\t\t\nargument\ta.dat\t\t,\n"
            "argument\tb.dat\t\t\nqualifier\tlog\tout.txt\t\nqualifier\tverbose\t\t\n");
  // JSON escapes quotes, backslashes and controls; "" and a quote in a list leave nothing open.
  EXPECT_EQ(runTool({"cmdline", "--json", "--", "--x", "\"a\"\"\\\t\" /q=(\"x)"}).out,
            "{\"part\":\"argument\",\"text\":\"--x\",\"value\":\"\",\"end\":\"\"}\n"
            "{\"part\":\"argument\",\"text\":\"a\\\"\\\\\\u0009\",\"value\":\"\",\"end\":\"\"}\n"
            "{\"part\":\"qualifier\",\"text\":\"q\",\"value\":\"(\\\"x)\",\"end\":\"\"}\n");
  // A stop, or a quote or a list left open: the parser's line, nothing printed, status 1.
  for (const char *line : {"/q=a=b", "copy \"a b", "/q=(a,b"}) {
    auto failed = runTool({"cmdline", line});
    EXPECT_EQ(failed.status, 1) << line;
    EXPECT_EQ(failed.out, "") << line;
    EXPECT_EQ(failed.err.rfind("%kwaCmdLnPrts, ", 0), 0u) << line;
  }
  EXPECT_EQ(runTool({"cmdline"}).status, 2);
}

TEST(TagsTool, ListsAndLooksUp) {
  fskit::test::TempDir dir;
  std::string file = dir.file("tags.tbl");
  fskit::test::writeFile(file, "ms Mass spectrum ! comment\n\n  uv   Ultra  violet\n");
  EXPECT_EQ(runTool({"tags", file}).out, "tag\tlabel\nMS\tMass spectrum\nUV\tUltra violet\n");
  EXPECT_EQ(runTool({"tags", "--json", file}).out,
            "{\"tag\":\"MS\",\"label\":\"Mass spectrum\"}\n{\"tag\":\"UV\",\"label\":\"Ultra violet\"}\n");
  EXPECT_EQ(runTool({"tags", "--json", file, "--tag", "MS"}).status, 2);
  EXPECT_EQ(runTool({"tags", "--keywords", file, "--tag", "UV"}).out, "##ULTRA VIOLET=\n");
  // --label finds the first label that begins with it, ignoring case.
  EXPECT_EQ(runTool({"tags", file, "--label=mass"}).out, "MS\n");
  EXPECT_EQ(runTool({"tags", file, "--label", "mass spectrum scan"}).status, 1);
  auto missing = runTool({"tags", file, "--tag", "uv"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "fskit tags: no record with the tag 'uv'\n");
  EXPECT_EQ(runTool({"tags", dir.file("none")}).status, 1);
  EXPECT_EQ(runTool({"tags", file, "--tag", "A", "--label", "b"}).status, 2);
}
