/* SPDX-License-Identifier: MIT */
/* fskit ini: INI files through small integer handles.
 *
 * A document is read from a file (or created empty) into one of 10 slots,
 * named by the handles 1000 to 1009; 0 is never a handle, and a number outside
 * 1000-1009 or naming a free slot is a bad handle, never reported. An INI file
 * is a list of paragraphs "[name]", each with lines "topic = value ; comment",
 * comment lines "; comment" and blank lines; all of them, and their order, are
 * kept when a document is written back. Names are compared byte for byte
 * (case-sensitive, not trimmed) and the first paragraph and first topic of a
 * name win. Lines are read in pieces of at most 1022 bytes, so a value read
 * from a file has at most 1020 characters and a name at most 1021.
 * Messages go to standard error. The slot table and the walk state of
 * fsIniNext() are process-wide.
 * Threads: any function from any thread at once; each call sees a document whole. */
#ifndef FSKIT_INI_H
#define FSKIT_INI_H

#include <stdint.h>
#include <fskit/export.h>

FSKIT_BEGIN_DECLS

/* Handle of a new empty document bound to `fileName` (the file is not touched
 * until fsIniWriteFile()), or 0: null name (silent), all 10 slots in use, or
 * out of memory (each reported). */
FSKIT_API int32_t fsIniNewFile(const char *fileName);

/* Handle of a document read from `fileName`, or 0 as fsIniNewFile() and when
 * the file cannot be opened, a directory included ("Error opening ini file
 * NAME"). Whatever does not parse ends the document silently: the handle
 * holds what was read up to it. Lines may end in LF or CR LF on every
 * platform. */
FSKIT_API int32_t fsIniReadFile(const char *fileName);

/* Copies the value of `topic` in the first paragraph named `paragraph` into
 * `value` (no length limit: size it for the values you expect; 1021 bytes hold
 * any value read from a file) and gives 1. `value` and `comment` first receive
 * the empty string (a null buffer is skipped); `comment` never gets more, so
 * one byte is enough. 0 for a bad handle (silent) or when there is no such
 * value ("Cannot find value for paragraph ... topic ..." on standard error). */
FSKIT_API int32_t fsIniGetValue(int32_t handle, const char *paragraph, const char *topic,
                                char *value, char *comment);

/* Sets `topic` of `paragraph` to `value`, adding the paragraph and the line at
 * the ends of their lists when missing; trailing blanks of topic and value are
 * dropped, and an empty or blank value removes the value. A non-empty
 * `comment` replaces the line's comment (blank: removes it); "" keeps it.
 * A null value or comment counts as "". 1 done (also when memory ran out on
 * the way), 0 bad handle. Nothing reaches the file before fsIniWriteFile(). */
FSKIT_API int32_t fsIniSetValue(int32_t handle, const char *paragraph, const char *topic,
                                const char *value, const char *comment);

/* Delivers the document's values one by one in file order: 1 with the next
 * paragraph, topic and value copied into the buffers, 0 at the end or for a bad
 * handle. A non-zero `first` starts over (before the handle is tested). A
 * paragraph's walk ends at its first blank or comment line; a topic without
 * value is skipped with the message of fsIniGetValue(); duplicates give the
 * first match's value. There is one walk in the process, not one per handle:
 * a walk that goes on with another handle goes on in that document's first
 * paragraph of the current paragraph's name, at the same line (when the
 * document it came from has been released, with the next paragraph). The
 * buffers must hold the longest name or value (1022 bytes hold any read from
 * a file); a null buffer is skipped. */
FSKIT_API int32_t fsIniNext(int32_t first, int32_t handle, char *paragraph, char *topic,
                            char *value);

/* Writes the document to its file and releases the handle: 1 done, 0 not (the
 * handle stays open). A regular file (or a new one) is replaced only once the
 * whole text is written, flushed and closed without error: the text goes to a
 * temporary file beside it that is renamed over it, keeping its permission
 * bits and owner; a symbolic link is followed. If anything fails, the old
 * file is left as it was. Other targets (devices, FIFOs, files with more than
 * one name, files whose owner the process cannot give a new file, files or
 * directories without write permission) are opened with "w" and written in
 * place, as the file itself; so is a file that the complete text cannot be
 * renamed over (a file mounted in its place). Opening failures print "Error
 * opening ini file NAME"; output errors, including one found when the file
 * is closed, are silent. The data is not forced to disk.
 * A paragraph with an empty name (never found by a lookup) is not written.
 * On Windows the file is a text file (lines end in CR LF), ReplaceFile puts
 * it in the old one's place, and read-only files, links, files with more
 * than one name and devices are written in place. */
FSKIT_API int32_t fsIniWriteFile(int32_t handle);

/* Releases the document of `handle` without writing it; a bad handle is
 * ignored. */
FSKIT_API void fsIniReleaseFile(int32_t handle);

FSKIT_END_DECLS

#endif
