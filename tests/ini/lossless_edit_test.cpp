// SPDX-License-Identifier: MIT
// The lossless document's listing and removal, and its quiet reading and
// writing: the messages come back to the caller instead of standard error.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ini/lossless.h"
#include "tests/support/test_support.h"

using fskit::ini::lossless::Document;
using fskit::test::captureStderr;
using fskit::test::readFile;
using fskit::test::TempDir;
using fskit::test::writeFile;

namespace {

const std::string kText =
    "; head\n[A]\nx = 1 ; one\n\n; note\ny=2\nx = shadowed\n[B]\nz = 3\n[A]\nw = 4\n[]\nq = 5\n";

TEST(LosslessListing, ParagraphsAndTopicsInFileOrderEachOnce) {
  Document document(kText);
  EXPECT_EQ(document.paragraphs(), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(document.topics("A"), (std::vector<std::string>{"x", "y"}));
  EXPECT_EQ(document.topics("B"), (std::vector<std::string>{"z"}));
  EXPECT_TRUE(document.topics("C").empty());
}

TEST(LosslessRemoval, TopicLineGoesAndEveryOtherByteStays) {
  Document document(kText);
  ASSERT_TRUE(document.removeTopic("A", "x"));
  // The second x of the paragraph now is the first: the one value() reads.
  EXPECT_EQ(document.value("A", "x"), "shadowed");
  std::string expected = kText;
  expected.erase(expected.find("x = 1 ; one\n"), 12);
  EXPECT_EQ(document.text(), expected);
  EXPECT_FALSE(document.removeTopic("A", "nothing"));
  EXPECT_FALSE(document.removeTopic("C", "x"));
  EXPECT_EQ(document.text(), expected);
}

TEST(LosslessRemoval, ParagraphGoesToTheNextHeader) {
  Document document(kText);
  ASSERT_TRUE(document.removeParagraph("B"));
  EXPECT_EQ(document.text(), "; head\n[A]\nx = 1 ; one\n\n; note\ny=2\nx = shadowed\n[A]\nw = 4\n[]\nq = 5\n");
  ASSERT_TRUE(document.removeParagraph("A"));  // the first of the two
  EXPECT_EQ(document.paragraphs(), (std::vector<std::string>{"A"}));
  EXPECT_EQ(document.value("A", "w"), "4");
  EXPECT_FALSE(document.removeParagraph("B"));
}

TEST(LosslessQuiet, ProblemsComeBackInsteadOfBeingPrinted) {
  TempDir dir;
  std::string problem, missing = dir.file("missing/none.ini");
  std::string err = captureStderr([&] {
    EXPECT_FALSE(Document::readFile(missing.c_str(), &problem));
    EXPECT_EQ(problem, "Error opening ini file " + missing);
    problem.clear();
    EXPECT_FALSE(Document(kText).writeFile(missing.c_str(), &problem));
    EXPECT_EQ(problem, "Error opening ini file " + missing);
  });
  EXPECT_EQ(err, "");
  // Without a place for the problem the message is printed, as before.
  err = captureStderr([&] { EXPECT_FALSE(Document::readFile(missing.c_str())); });
  EXPECT_EQ(err, "Error opening ini file " + missing + "\n");

  writeFile(dir.file("a.ini"), kText);
  problem.clear();
  auto read = Document::readFile(dir.file("a.ini").c_str(), &problem);
  ASSERT_TRUE(read);
  EXPECT_TRUE(read->writeFile(dir.file("b.ini").c_str(), &problem));
  EXPECT_EQ(problem, "");
  EXPECT_EQ(readFile(dir.file("b.ini")), kText);
}

}  // namespace
