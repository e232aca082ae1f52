// SPDX-License-Identifier: MIT
// kwaCmdLnPrts on any line: the record points into the line, the messages
// are the documented ones, and a line written back from a clean parse (every
// token quoted) parses to the same parts.
#include <fskit/cmdline.h>

#include <optional>

#include "fuzz/support/fuzz_support.h"

namespace {

const std::string kLabel = "%kwaCmdLnPrts, ";

struct Parsed {
  int32_t result = 0;
  std::string err;
  std::vector<std::string> args, names;
  std::string argEnds;
  std::vector<std::optional<std::string>> values;
  bool operator==(const Parsed &) const = default;
};

Parsed parse(std::string_view lineBytes) {
  Text line(lineBytes);
  const std::string original(line.str());
  KwaCmdLnParts parts;
  std::memset(&parts, 0x5a, sizeof parts);
  Parsed out;
  out.err = caughtStream(::stderr, [&] { out.result = kwaCmdLnPrts(line.get(), &parts); });

  // A limit stops the parse at the character where the refused token would
  // start, which is the line's end after a final quote: then the result is 0.
  const bool limit = out.err == kLabel + "Exceeded maximum number of arguments.\n" ||
                     out.err == kLabel + "Exceeded maximum number of qualifiers.\n";
  if (out.result != 0 || limit) {
    // Stopped at the character it returns; an invalid delimiter also shows
    // the rest of the line from there.
    FUZZ_CHECK(limit || out.err.starts_with(kLabel + "Invalid delimiter "));
    if (out.err.starts_with(kLabel + "Invalid delimiter ")) {
      std::string rest = out.err.substr(kLabel.size() + 18);
      FUZZ_CHECK(!rest.empty() && rest.back() == '\n');
      rest.pop_back();
      FUZZ_CHECK(original.ends_with(rest) && !rest.empty() && int32_t(static_cast<signed char>(rest[0])) == out.result);
      FUZZ_CHECK(rest[0] == '"' || rest[0] == '(' || rest[0] == '=');
    }
    return out;
  }
  FUZZ_CHECK(out.err.empty() || out.err == kLabel + "Unmatched quoted string.\n" ||
             out.err == kLabel + "Unterminated list.\n");
  FUZZ_CHECK(parts.nArgs >= 0 && parts.nArgs <= KWA_MAX_ARGS);
  FUZZ_CHECK(parts.nQuals >= 0 && parts.nQuals <= KWA_MAX_QUALS);
  auto inLine = [&](const char *p) {
    FUZZ_CHECK(p >= line.get() && p < line.get() + line.size());
    return std::string(p);
  };
  for (int32_t i = 0; i < KWA_MAX_ARGS; ++i) {
    FUZZ_CHECK(parts.argEnds[i] == ' ' || (parts.argEnds[i] == ',' && i < parts.nArgs));
    if (i < parts.nArgs) out.args.push_back(inLine(parts.args[i]));
  }
  out.argEnds.assign(parts.argEnds, size_t(parts.nArgs));
  for (int32_t i = 0; i < parts.nQuals; ++i) {
    out.names.push_back(inLine(parts.qualNames[i]));
    FUZZ_CHECK(!out.names.back().empty());
    out.values.push_back(parts.qualValues[i] ? std::optional(inLine(parts.qualValues[i])) : std::nullopt);
  }
  return out;
}

std::string quoted(const std::string &text) {
  std::string out = "\"";
  for (char c : text) out += c == '"' ? "\"\"" : std::string(1, c);
  return out + "\"";
}

// The parts as a line: arguments first, each quoted and followed by its mark,
// then the qualifiers with quoted values.
std::string written(const Parsed &parsed) {
  std::string line;
  for (size_t i = 0; i < parsed.args.size(); ++i) line += quoted(parsed.args[i]) + parsed.argEnds[i];
  for (size_t i = 0; i < parsed.names.size(); ++i)
    line += "/" + parsed.names[i] + (parsed.values[i] ? "=" + quoted(*parsed.values[i]) : "") + " ";
  return line;
}

}  // namespace

FUZZ_TARGET(bytes) {
  const Parsed parsed = parse(bytes);
  if (parsed.result == 0 && parsed.err.empty()) FUZZ_CHECK(parse(written(parsed)) == parsed);
}
