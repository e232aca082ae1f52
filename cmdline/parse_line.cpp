// SPDX-License-Identifier: MIT
// kwaCmdLnPrts: one left-to-right pass over a writable line, splitting it in
// place into arguments and slash qualifiers.
#include <cstdio>

#include <fskit/cmdline.h>

namespace {

constexpr const char *kRoutine = "%kwaCmdLnPrts";

// What a token that starts now becomes.
enum class Mode { argument, qualifierName, qualifierValue };

int32_t signExtended(char c) { return static_cast<signed char>(c); }

class LineParser {
 public:
  LineParser(char *line, KwaCmdLnParts &parts) : at_(line), parts_(parts) {}

  int32_t run() {
    while (*at_ != '\0') {
      if (inQuote_) {
        quoted();
      } else if (inList_) {
        // Lists do not nest: the first ')' ends one whatever lies inside.
        if (*at_ == ')') {
          inList_ = false;
          mode_ = Mode::argument;
        }
        ++at_;
      } else {
        if (!step()) return stop_;
        ++at_;
      }
    }
    if (inQuote_) {
      // Nothing is terminated: after collapsed "" pairs the open text still
      // ends with the line's own last bytes.
      std::fprintf(stderr, "%s, Unmatched quoted string.\n", kRoutine);
    } else if (inList_) {
      std::fprintf(stderr, "%s, Unterminated list.\n", kRoutine);
    }
    return 0;
  }

 private:
  // Inside quotes text is copied left over each collapsed "" pair; the copy
  // never overtakes the reading position, so the rest of the line stays intact.
  void quoted() {
    if (*at_ != '"') {
      *copy_++ = *at_++;
    } else if (at_[1] == '"') {
      *copy_++ = '"';
      at_ += 2;
    } else {
      *copy_ = '\0';  // the token stays in progress: what follows is dropped
      inQuote_ = false;
      ++at_;
    }
  }

  // One character outside quotes and lists; false when parsing stops here.
  bool step() {
    switch (*at_) {
      case ' ':
      case '\t':
        if (inToken_) endToken(Mode::argument);
        return true;
      case '"':
        return openQuote();
      case '(':
        return openList();
      case ',':
        // Only an argument ends at a comma; in a qualifier it is text.
        if (inToken_ && kind_ == Mode::argument) {
          parts_.argEnds[parts_.nArgs - 1] = ',';
          endToken(Mode::argument);
        }
        return true;
      case '/':
        if (inToken_) endToken(Mode::qualifierName);
        mode_ = Mode::qualifierName;
        return true;
      case '=':
        if (kind_ != Mode::qualifierName) return invalidDelimiter();
        [[fallthrough]];
      case ':':
        // Elsewhere a colon is plain text, so drive letters survive.
        if (kind_ == Mode::qualifierName) {
          if (inToken_) endToken(Mode::qualifierValue);
          mode_ = Mode::qualifierValue;
        }
        return true;
      default:
        return inToken_ || startToken(at_);
    }
  }

  void endToken(Mode next) {
    *at_ = '\0';
    inToken_ = false;
    mode_ = next;
  }

  bool startToken(char *start) {
    switch (mode_) {
      case Mode::argument:
        if (++parts_.nArgs > KWA_MAX_ARGS)
          return refuse(start, "%s, Exceeded maximum number of arguments.\n");
        parts_.args[parts_.nArgs - 1] = start;
        break;
      case Mode::qualifierName:
        if (++parts_.nQuals > KWA_MAX_QUALS)
          return refuse(start, "%s, Exceeded maximum number of qualifiers.\n");
        parts_.qualNames[parts_.nQuals - 1] = start;
        parts_.qualValues[parts_.nQuals - 1] = nullptr;
        break;
      case Mode::qualifierValue:
        // Only reachable after a qualifier name, so nQuals is at least 1.
        parts_.qualValues[parts_.nQuals - 1] = start;
        break;
    }
    kind_ = mode_;
    inToken_ = true;
    return true;
  }

  bool openQuote() {
    if (inToken_ || mode_ == Mode::qualifierName) return invalidDelimiter();
    if (!startToken(at_ + 1)) return false;
    inQuote_ = true;
    copy_ = at_ + 1;
    return true;
  }

  bool openList() {
    if (inToken_ || mode_ != Mode::qualifierValue) return invalidDelimiter();
    startToken(at_);  // a value: no limit applies
    inList_ = true;
    return true;
  }

  bool invalidDelimiter() {
    std::fprintf(stderr, "%s, Invalid delimiter %s\n", kRoutine, at_);
    stop_ = signExtended(*at_);
    return false;
  }

  bool refuse(const char *start, const char *format) {
    std::fprintf(stderr, format, kRoutine);
    stop_ = signExtended(*start);
    return false;
  }

  char *at_;
  KwaCmdLnParts &parts_;
  Mode mode_ = Mode::argument;
  Mode kind_ = Mode::argument;  // the mode at which the current or last token started
  bool inToken_ = false;
  bool inQuote_ = false;
  bool inList_ = false;
  char *copy_ = nullptr;
  int32_t stop_ = 0;
};

}  // namespace

extern "C" {

FSKIT_API int32_t kwaCmdLnPrts(char *line, KwaCmdLnParts *parts) {
  if (parts == nullptr) return 0;
  parts->nArgs = 0;
  parts->nQuals = 0;
  for (char &end : parts->argEnds) end = ' ';
  if (line == nullptr) return 0;
  return LineParser(line, *parts).run();
}

}  // extern "C"
