// SPDX-License-Identifier: MIT
// The library's messages in the Python package. The module's copy of the
// library gets a message function that keeps each message in a list of the
// calling thread (nothing reaches standard output); after each call the
// binding takes the list, with the interpreter lock held, hands it to the
// logger "fskit" and uses it as the text of an exception it raises.
#pragma once

#include <string>
#include <vector>

namespace fskit::python {

struct LibraryMessage {
  std::string routine;
  std::string text;
};

// Makes the capturing function the library's message function and switches
// the library's log file off. Called once, when the module is imported.
void captureLibraryMessages();

// Takes the messages the library gave on this thread since the last take.
std::vector<LibraryMessage> takeLibraryMessages();

// Adds a message of the binding's own (the library printing nothing where
// the binding found the problem itself).
void addLibraryMessage(std::string routine, std::string text);

// Takes this thread's messages, logs each one on the logger "fskit" at
// `level` (logging.WARNING and so on) and returns their texts joined by
// "; " ("" when there were none). Needs the interpreter lock.
std::string forwardLibraryMessages(int level = 30);

}  // namespace fskit::python
