// SPDX-License-Identifier: MIT
// Loading an element file without losing the table in use, for fskit's
// Python package (not installed, not exported).
#pragma once

namespace fskit::chemistry {

// As fsLoadElemTable(path), with the same messages, except that the table in
// use stays, for every thread at every moment, unless the file gives a usable
// one (records read, not filling the block). True when it now is the table.
// Any thread; loads are serialised with the library's own.
bool loadElementFileKeepingTable(const char *path);

}  // namespace fskit::chemistry
