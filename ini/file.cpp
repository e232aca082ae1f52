// SPDX-License-Identifier: MIT
// The document: its list of paragraphs and the lookups across them.
#include "ini/document.h"

namespace fskit::ini {

FsIniFile *FsIniFile::create(const char *fileName) {
  FsIniFile *document = new (std::nothrow) FsIniFile;
  if (document == nullptr) return nullptr;
  setText(document->fileName_, fileName, Trim::kNone);
  if (document->fileName_ == nullptr && fileName != nullptr && *fileName != '\0') {
    delete document;
    return nullptr;
  }
  return document;
}

FsIniFile::~FsIniFile() {
  clear();
  setText(fileName_, nullptr, Trim::kNone);
}

const char *FsIniFile::valueOf(const char *paragraph, const char *topic) const {
  const FsIniParagraph *found = findParagraph(paragraph);
  return found != nullptr ? found->valueOf(topic) : nullptr;
}

void FsIniFile::setValue(const char *paragraph, const char *topic, const char *text) {
  if (FsIniParagraph *found = paragraphs_.findOrAdd(paragraph)) found->setValue(topic, text);
}

void FsIniFile::setComment(const char *paragraph, const char *topic, const char *text) {
  if (FsIniParagraph *found = paragraphs_.findOrAdd(paragraph)) found->setComment(topic, text);
}

const char *FsIniFile::paragraphNameAt(int32_t index) const {
  const FsIniParagraph *paragraph = paragraphs_.at(index);
  return paragraph != nullptr ? paragraph->name() : nullptr;
}

const char *FsIniFile::topicAt(const char *paragraph, int32_t index) const {
  const FsIniParagraph *found = findParagraph(paragraph);
  return found != nullptr ? found->topicAt(index) : nullptr;
}

int FsIniFile::read(std::FILE *stream) {
  if (stream == nullptr) return kFailed;
  clear();
  paragraphs_.readAll(stream);
  return kOk;
}

int FsIniFile::write(std::FILE *stream) const {
  if (stream == nullptr) return kFailed;
  return paragraphs_.writeAll(stream);
}

}  // namespace fskit::ini
