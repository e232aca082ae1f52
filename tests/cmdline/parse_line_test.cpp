// kwaCmdLnPrts: the documented examples, and generated lines checked against
// a second, plain implementation that builds each token's text by appending
// characters instead of parsing in place.
#include <fskit/cmdline.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

using fskit::test::captureStderr;

namespace {

const std::string kLabel = "%kwaCmdLnPrts, ";

// A parse written out as text: "[arg] [arg], /name /name=[value]", or, when
// the parse stopped, only the stop character and the counts.
struct Outcome {
  int32_t result = 0;
  std::string parts;
  std::string err;
};

std::string render(const std::vector<std::string> &args, const std::string &marks,
                   const std::vector<std::string> &names,
                   const std::vector<std::optional<std::string>> &values) {
  std::string out;
  for (size_t i = 0; i < args.size(); ++i)
    out += "[" + args[i] + "]" + (marks[i] == ',' ? ", " : " ");
  for (size_t i = 0; i < names.size(); ++i)
    out += "/" + names[i] + (values[i] ? "=[" + *values[i] + "] " : " ");
  if (!out.empty()) out.pop_back();
  return out;
}

std::string stopped(int32_t result, int nArgs, int nQuals) {
  return "stop " + std::to_string(result) + " args " + std::to_string(nArgs) + " quals " +
         std::to_string(nQuals);
}

// Runs the library on a heap copy of exactly the line's size, so that the
// sanitizers see any access outside it, and checks that every pointer handed
// back points into that copy.
Outcome parseWithLibrary(const std::string &line, bool withErr = true) {
  std::vector<char> copy(line.begin(), line.end());
  copy.push_back('\0');
  char *begin = copy.data(), *end = begin + line.size();
  auto inside = [&](const char *p) { return p >= begin && p <= end; };
  KwaCmdLnParts parts;
  Outcome outcome;
  auto run = [&] { outcome.result = kwaCmdLnPrts(begin, &parts); };
  if (withErr) outcome.err = captureStderr(run); else run();
  bool complete = outcome.result == 0;
  if (!complete) {
    outcome.parts = stopped(outcome.result, parts.nArgs, parts.nQuals);
    return outcome;
  }
  std::vector<std::string> args, names;
  std::vector<std::optional<std::string>> values;
  for (int i = 0; i < parts.nArgs; ++i) {
    EXPECT_TRUE(inside(parts.args[i])) << line;
    args.emplace_back(parts.args[i]);
  }
  for (int i = 0; i < parts.nQuals; ++i) {
    EXPECT_TRUE(inside(parts.qualNames[i])) << line;
    names.emplace_back(parts.qualNames[i]);
    EXPECT_TRUE(parts.qualValues[i] == nullptr || inside(parts.qualValues[i])) << line;
    values.push_back(parts.qualValues[i] ? std::optional<std::string>(parts.qualValues[i])
                                         : std::nullopt);
  }
  for (int i = parts.nArgs; i < KWA_MAX_ARGS; ++i) EXPECT_EQ(parts.argEnds[i], ' ') << line;
  outcome.parts = render(args, std::string(parts.argEnds, size_t(parts.nArgs)), names, values);
  return outcome;
}

// The plain implementation: one character at a time, each token's text built
// by appending; `text` is the text the current token still grows (none once
// a closing quote has ended it).
Outcome parseWithModel(const std::string &line) {
  enum Mode { ARG, NAME, VALUE } mode = ARG, kind = ARG;
  bool token = false, quote = false, list = false;
  std::vector<std::string> args, names;
  std::vector<std::optional<std::string>> values;
  std::string marks;
  std::string *text = nullptr;
  Outcome outcome;
  auto stop = [&](size_t at, const std::string &err) {
    outcome.result = at < line.size() ? int32_t(static_cast<signed char>(line[at])) : 0;
    outcome.err = kLabel + err;
    outcome.parts = stopped(outcome.result, int(args.size()), int(names.size()));
    return outcome;
  };
  auto invalid = [&](size_t at) { return stop(at, "Invalid delimiter " + line.substr(at) + "\n"); };
  // Starts a token at `at` in the current mode; false when a limit refuses it.
  auto start = [&] {
    if (mode == ARG) {
      args.emplace_back();
      marks += ' ';
      if (args.size() > 20) return false;
      text = &args.back();
    } else if (mode == NAME) {
      names.emplace_back();
      values.emplace_back();
      if (names.size() > 50) return false;
      text = &names.back();
    } else {
      values.back() = "";
      text = &*values.back();
    }
    kind = mode;
    token = true;
    return true;
  };
  auto refused = [&](size_t at) {
    return stop(at, mode == ARG ? "Exceeded maximum number of arguments.\n"
                                : "Exceeded maximum number of qualifiers.\n");
  };
  for (size_t i = 0; i < line.size(); ++i) {
    char c = line[i];
    if (quote) {
      if (c == '"' && i + 1 < line.size() && line[i + 1] == '"') {
        text->push_back('"');
        ++i;
      } else if (c == '"') {
        quote = false;
        text = nullptr;
      } else {
        text->push_back(c);
      }
    } else if (list) {
      text->push_back(c);
      if (c == ')') {
        list = false;
        mode = ARG;
      }
    } else if (c == ' ' || c == '\t') {
      if (token) mode = ARG;
      token = false;
    } else if (c == '"') {
      if (token || mode == NAME) return invalid(i);
      if (!start()) return refused(i + 1);
      quote = true;
    } else if (c == '(') {
      if (token || mode != VALUE) return invalid(i);
      start();
      text->push_back(c);
      list = true;
    } else if (c == ',' && token && kind == ARG) {
      marks.back() = ',';
      token = false;
      mode = ARG;
    } else if (c == '/') {
      token = false;
      mode = NAME;
    } else if (c == '=' && kind != NAME) {
      return invalid(i);
    } else if ((c == ':' || c == '=') && kind == NAME) {
      token = false;
      mode = VALUE;
    } else if (token) {
      if (text) text->push_back(c);
    } else if (c != ',' && c != ':') {
      if (!start()) return refused(i);
      text->push_back(c);
    }
  }
  if (quote) outcome.err = kLabel + "Unmatched quoted string.\n";
  else if (list) outcome.err = kLabel + "Unterminated list.\n";
  outcome.parts = render(args, marks, names, values);
  return outcome;
}

std::string repeat(const std::string &piece, int n) {
  std::string out;
  for (int i = 0; i < n; ++i) out += piece;
  return out;
}

}  // namespace

TEST(CommandLine, ExamplesAndEdgeCases) {
  struct Case {
    std::string line;
    int32_t result;
    std::string parts;
    std::string err;
  };
  const std::vector<Case> cases = {
      {"copy a.dat,b.dat /log=out.txt /verbose", 0,
       "[copy] [a.dat], [b.dat] /log=[out.txt] /verbose", ""},
      {"/list=(a, b c) x", 0, "[x] /list=[(a, b c)]", ""},
      {"/q=(a \"/b\" (c)d /e", 0, "/q=[(a \"/b\" (c)d] /e", ""},
      {"\"say \"\"hi\"\"\"", 0, "[say \"hi\"]", ""},
      {"a=b", '=', "stop 61 args 1 quals 0", "Invalid delimiter =b\n"},
      {"/q=a=b", '=', "stop 61 args 0 quals 1", "Invalid delimiter =b\n"},
      {"ab\"c\"", '"', "stop 34 args 1 quals 0", "Invalid delimiter \"c\"\n"},
      {"/\"q\"", '"', "stop 34 args 0 quals 0", "Invalid delimiter \"q\"\n"},
      {"x (a)", '(', "stop 40 args 1 quals 0", "Invalid delimiter (a)\n"},
      {"\"a\"b c", 0, "[a] [c]", ""},
      {"/ q", 0, "/q", ""},
      {"/q = v", 0, "/q=[v]", ""},
      {"/q :v w", 0, "[w] /q=[v]", ""},
      {"/a/b /c=x/d", 0, "/a /b /c=[x] /d", ""},
      {"/a,b=c,d", 0, "/a,b=[c,d]", ""},
      {"/q=\"x y\"\"\" z", 0, "[z] /q=[x y\"]", ""},
      {"/q=\"\"", 0, "/q=[]", ""},
      {"a ,b", 0, "[a] [b]", ""},
      {"\"a\",b", 0, "[a], [b]", ""},
      {"c:\\dir\\f.txt :x", 0, "[c:\\dir\\f.txt] [x]", ""},
      {"\x80\x01\n\xff)", 0, "[\x80\x01\n\xff)]", ""},
      {"\"abc", 0, "[abc]", "Unmatched quoted string.\n"},
      {"\"a\"\"b", 0, "[a\"b]", "Unmatched quoted string.\n"},
      {"/q=(a", 0, "/q=[(a]", "Unterminated list.\n"},
      {"", 0, "", ""},
      {repeat("a ", 20), 0, repeat("[a] ", 19) + "[a]", ""},
      {repeat("a ", 20) + "\xe9", -23, "stop -23 args 21 quals 0",
       "Exceeded maximum number of arguments.\n"},
      {repeat("a ", 20) + "\"q\"", 'q', "stop 113 args 21 quals 0",
       "Exceeded maximum number of arguments.\n"},
      {repeat("/a", 50) + "/z", 'z', "stop 122 args 0 quals 51",
       "Exceeded maximum number of qualifiers.\n"},
  };
  for (const Case &c : cases) {
    Outcome outcome = parseWithLibrary(c.line);
    EXPECT_EQ(outcome.result, c.result) << c.line;
    EXPECT_EQ(outcome.parts, c.parts) << c.line;
    EXPECT_EQ(outcome.err, c.err.empty() ? "" : kLabel + c.err) << c.line;
  }
  KwaCmdLnParts parts;
  EXPECT_EQ(kwaCmdLnPrts(nullptr, &parts), 0);
  EXPECT_EQ(parts.nArgs + parts.nQuals, 0);
  char line[] = "a";
  EXPECT_EQ(kwaCmdLnPrts(line, nullptr), 0);
}

TEST(CommandLine, GeneratedLinesAgreeWithPlainImplementation) {
  // Single delimiters and letters, and a few pieces that make the limits of
  // 20 arguments and 50 qualifiers reachable within a line of some length.
  const std::vector<std::string> pieces = {" ", "\t", "\"", ",", "(", ")", "/", ":", "=", "a", "b",
                                           "\n", "\x80", "\xff", "/a", "/b=", "a,"};
  std::mt19937 random(20240611);
  std::vector<std::string> lines;
  for (int n = 0; n < 20000; ++n) {
    // Each line draws from its own subset, so that long lines without
    // stopping characters are common.
    std::vector<std::string> subset = {"a"};
    for (const std::string &piece : pieces)
      if (random() % 2) subset.push_back(piece);
    std::string line;
    for (size_t count = random() % 251; count > 0; --count)
      line += subset[random() % subset.size()];
    lines.push_back(line);
  }
  std::vector<Outcome> expected;
  std::string expectedErr;
  for (const std::string &line : lines) {
    expected.push_back(parseWithModel(line));
    expectedErr += expected.back().err;
  }
  std::vector<Outcome> actual;
  std::string err = captureStderr([&] {
    for (const std::string &line : lines) actual.push_back(parseWithLibrary(line, false));
  });
  size_t offset = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    ASSERT_EQ(actual[i].result, expected[i].result) << "[" << lines[i] << "]";
    ASSERT_EQ(actual[i].parts, expected[i].parts) << "[" << lines[i] << "]";
    ASSERT_EQ(err.substr(offset, expected[i].err.size()), expected[i].err)
        << "[" << lines[i] << "]";
    offset += expected[i].err.size();
  }
  EXPECT_EQ(err.size(), offset);
}
