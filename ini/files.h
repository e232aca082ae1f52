// SPDX-License-Identifier: MIT
// How the INI family reads and replaces files, shared by the handles of the
// C functions, the lossless documents of the tool and the tool's own whole
// files (tools/write_file.h).
#pragma once

#include <cstdio>
#include <string>

namespace fskit::ini {

// The file opened for reading (binary), or null when it cannot be opened; a
// directory counts as a file that cannot be opened. Prints nothing.
std::FILE *openForReading(const char *fileName);

// Puts a whole text on `stream`; false on an output error.
using TextWriter = bool (*)(const void *source, std::FILE *stream);

// Writes what `write` makes of `source` to `fileName` the way fsIniWriteFile
// does: a regular file is replaced only by a complete new text, other targets
// are written in place; "Error opening ini file NAME" when a file cannot be
// opened. `binary`: the bytes go out as they are, on Windows too (otherwise
// a line feed becomes CR LF there). False when the text was not written.
// With `problem` the message goes there instead of standard error.
bool replaceFile(const char *fileName, TextWriter write, const void *source, bool binary,
                 std::string *problem = nullptr);

}  // namespace fskit::ini
