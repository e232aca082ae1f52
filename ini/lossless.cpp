// SPDX-License-Identifier: MIT
// The lossless document: a file's lines as they are, understood by the
// classic reading rules.
#include "ini/lossless.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_map>

#include "ini/files.h"
#include "platform/ascii.h"

namespace fskit::ini::lossless {
namespace {

using Kind = FsIniLine::Kind;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr size_t npos = std::string::npos;

#if defined(_WIN32)
constexpr const char *kDefaultLineEnd = "\r\n";
#else
constexpr const char *kDefaultLineEnd = "\n";
#endif

std::string_view lineEndOf(std::string_view bytes) {
  if (bytes.ends_with("\r\n")) return bytes.substr(bytes.size() - 2);
  if (bytes.ends_with('\n')) return bytes.substr(bytes.size() - 1);
  return {};
}

// `text` made into a line with `end` instead of the line feed the writer
// put at its end.
std::string withLineEnd(std::string text, std::string_view end) {
  if (!text.empty() && text.back() == '\n') text.pop_back();
  text += end;
  return text;
}

bool writeBytes(const void *document, std::FILE *stream) {
  std::string text = static_cast<const Document *>(document)->text();
  return std::fwrite(text.data(), 1, text.size(), stream) == text.size();
}

}  // namespace

Document::Document(const std::string &text) {
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    end = end == npos ? text.size() : end + 1;
    lines_.push_back(lineOf(text.substr(start, end - start), start == 0));
    start = end;
  }
}

Document::Line Document::lineOf(std::string bytes, bool first) {
  Line line;
  line.bytes = std::move(bytes);
  std::string_view seen = line.bytes;
  if (first && seen.starts_with(kByteOrderMark)) seen.remove_prefix(kByteOrderMark.size());
  // What one fgets of the C functions' reader takes of the line.
  char text[kLineBuffer];
  size_t length = std::min(seen.size(), size_t(kLineBuffer - 1));
  std::memcpy(text, seen.data(), length);
  text[length] = '\0';
  FsIniLine parsed;
  line.kind = parsed.take(text);
  if (line.kind == Kind::kHeader) {
    char *p = text;
    while (ascii::isSpace(*p)) ++p;
    if (const char *name = FsIniParagraph::headerName(p)) {
      line.named = true;
      line.name = name;
    }
    return line;
  }
  if (parsed.topic() != nullptr) {
    line.named = true;
    line.name = parsed.topic();
  }
  if (parsed.value() != nullptr) line.value = parsed.value();
  if (parsed.comment() != nullptr) line.comment = parsed.comment();
  return line;
}

std::optional<Document> Document::readFile(const char *fileName, std::string *problem) {
  std::FILE *stream = openForReading(fileName);
  std::string text;
  if (stream != nullptr) {
    char block[8192];
    size_t got;
    while ((got = std::fread(block, 1, sizeof block, stream)) > 0) text.append(block, got);
    bool failed = std::ferror(stream) != 0;
    std::fclose(stream);
    if (!failed) return Document(text);
  }
  if (problem != nullptr)
    *problem = std::string("Error opening ini file ") + fileName;
  else
    std::fprintf(stderr, "Error opening ini file %s\n", fileName);
  return std::nullopt;
}

bool Document::writeFile(const char *fileName, std::string *problem) const {
  return replaceFile(fileName, writeBytes, this, true, problem);
}

std::string Document::text() const {
  std::string text;
  for (const Line &line : lines_) text += line.bytes;
  return text;
}

size_t Document::findParagraph(const std::string &name) const {
  for (size_t i = 0; i < lines_.size(); ++i)
    if (lines_[i].kind == Kind::kHeader && lines_[i].named && lines_[i].name == name) return i;
  return npos;
}

size_t Document::findTopic(size_t header, const std::string &topic) const {
  for (size_t i = header + 1; i < lines_.size() && lines_[i].kind != Kind::kHeader; ++i)
    if (lines_[i].kind == Kind::kTopic && lines_[i].named && lines_[i].name == topic) return i;
  return npos;
}

std::optional<std::string> Document::value(const std::string &paragraph,
                                           const std::string &topic) const {
  size_t header = findParagraph(paragraph);
  size_t line = header == npos ? npos : findTopic(header, topic);
  return line == npos ? std::nullopt : lines_[line].value;
}

std::vector<std::string> Document::paragraphs() const {
  std::vector<std::string> names;
  for (const Line &line : lines_)
    if (line.kind == Kind::kHeader && line.named &&
        std::find(names.begin(), names.end(), line.name) == names.end())
      names.push_back(line.name);
  return names;
}

std::vector<std::string> Document::topics(const std::string &paragraph) const {
  std::vector<std::string> names;
  size_t header = findParagraph(paragraph);
  if (header == npos) return names;
  for (size_t i = header + 1; i < lines_.size() && lines_[i].kind != Kind::kHeader; ++i)
    if (lines_[i].kind == Kind::kTopic && lines_[i].named &&
        std::find(names.begin(), names.end(), lines_[i].name) == names.end())
      names.push_back(lines_[i].name);
  return names;
}

bool Document::removeTopic(const std::string &paragraph, const std::string &topic) {
  size_t header = findParagraph(paragraph);
  size_t line = header == npos ? npos : findTopic(header, topic);
  if (line == npos) return false;
  lines_.erase(lines_.begin() + std::ptrdiff_t(line));
  return true;
}

bool Document::removeParagraph(const std::string &paragraph) {
  size_t header = findParagraph(paragraph);
  if (header == npos) return false;
  size_t end = header + 1;
  while (end < lines_.size() && lines_[end].kind != Kind::kHeader) ++end;
  lines_.erase(lines_.begin() + std::ptrdiff_t(header), lines_.begin() + std::ptrdiff_t(end));
  return true;
}

std::string Document::lineEnd(size_t after) const {
  for (size_t i = std::min(after + 1, lines_.size()); i-- > 0;)
    if (std::string_view end = lineEndOf(lines_[i].bytes); !end.empty()) return std::string(end);
  return kDefaultLineEnd;
}

void Document::insert(size_t at, std::string text) {
  std::string end = lineEnd(at - 1);
  // Only the last line can be without a line end; one is put after it first.
  if (at == lines_.size() && at > 0 && lineEndOf(lines_.back().bytes).empty()) {
    Line &last = lines_.back();
    std::string bytes = last.bytes;
    // A header without its ']' would take the line end into its name: the
    // ']' goes after the name first.
    if (last.kind == Kind::kHeader && last.named && lineOf(bytes + end, at == 1).name != last.name)
      bytes.insert(bytes.find('[') + 1 + last.name.size(), "]");
    last = lineOf(bytes + end, at == 1);
  }
  lines_.insert(lines_.begin() + ptrdiff_t(at), lineOf(withLineEnd(std::move(text), end), at == 0));
}

void Document::setValue(const std::string &paragraph, const std::string &topic,
                        const std::string &value, const std::string &comment) {
  if (paragraph.empty()) return;
  size_t header = findParagraph(paragraph);
  size_t found = header == npos ? npos : findTopic(header, topic);
  const Line *old = found == npos ? nullptr : &lines_[found];
  FsIniLine line(topic.c_str(), old != nullptr && old->value ? old->value->c_str() : nullptr,
                 old != nullptr && old->comment ? old->comment->c_str() : nullptr);
  line.setValue(value.c_str());
  if (!comment.empty()) line.setComment(comment.c_str());

  if (found != npos) {
    lines_[found] = lineOf(withLineEnd(line.text(), lineEndOf(old->bytes)), found == 0);
  } else if (header == npos) {
    insert(lines_.size(), "[" + paragraph + "]\n");
    insert(lines_.size(), line.text());
  } else {
    // After the lines that the C functions read into the paragraph: before
    // the next header or the first line they stop at.
    size_t at = header + 1;
    while (at < lines_.size() && lines_[at].kind != Kind::kHeader &&
           lines_[at].kind != Kind::kOther)
      ++at;
    insert(at, line.text());
  }
}

std::vector<Document::Entry> Document::values() const {
  std::unordered_map<std::string, size_t> firstHeader;
  for (size_t i = 0; i < lines_.size(); ++i)
    if (lines_[i].kind == Kind::kHeader && lines_[i].named)
      firstHeader.try_emplace(lines_[i].name, i);
  std::vector<Entry> entries;
  for (const Line &header : lines_) {
    if (header.kind != Kind::kHeader || !header.named) continue;
    std::unordered_map<std::string_view, const Line *> firstLine;
    for (size_t i = firstHeader[header.name] + 1;
         i < lines_.size() && lines_[i].kind == Kind::kTopic && lines_[i].named; ++i) {
      const Line *first = firstLine.try_emplace(lines_[i].name, &lines_[i]).first->second;
      entries.push_back({header.name, lines_[i].name, first->value});
    }
  }
  return entries;
}

std::optional<std::string> refusal(const std::string &paragraph, const std::string &topic,
                                   const std::string &value, const std::string &comment) {
  for (const auto &[what, text] : {std::pair{"paragraph name", &paragraph},
                                   {"topic", &topic},
                                   {"value", &value},
                                   {"comment", &comment}})
    if (text->find_first_of("\r\n") != std::string::npos)
      return std::string("a line feed or carriage return in the ") + what + " would break the line";
  if (paragraph.empty()) return "the paragraph name is empty";
  if (paragraph.find(']') != std::string::npos) return "a paragraph name cannot contain ']'";
  if (topic.empty() || ascii::isSpace(topic.front()) || ascii::isSpace(topic.back()) ||
      ascii::isCntrl(topic.back()))
    return "a topic cannot be empty nor begin or end with a blank";
  if (topic.find('=') != std::string::npos) return "a topic cannot contain '='";
  if (topic.front() == '[' || topic.front() == ';' || topic.front() == '#')
    return "a topic cannot begin with '[', ';' or '#'";
  return std::nullopt;
}

std::string readBack(const std::string &topic, const std::string &value) {
  FsIniLine line(topic.c_str(), value.c_str());
  if (line.topic() == nullptr) return "";
  return Document("[p]\n" + line.text()).value("p", line.topic()).value_or("");
}

}  // namespace fskit::ini::lossless
