/* SPDX-License-Identifier: MIT */
/* fskit files: file names, file records, file times and sizes, directory
 * listing, creation and removal.
 *
 * Path helpers (fsFileParse, fsAppendSubDir and the parts of listed records)
 * treat only the backslash `\` as a separator, a drive ending at its colon;
 * `/` is an ordinary character there. Files are opened with the path as
 * given. The directory functions read `\` as `/` in every path and pattern, so
 * both "data\raw" and "data/raw" name the same directory (on Windows both are
 * the system's own separators, and paths go to it unchanged). Nothing here
 * prints, except fsLastModified for a file dated before the year 0.
 * Threads: every function may be called from any number of threads at once,
 * each on its own buffers and FsFile records. */
#ifndef FSKIT_FILES_H
#define FSKIT_FILES_H

#include <stdint.h>
#include <stdio.h>
#include <fskit/export.h>

FSKIT_BEGIN_DECLS

/* An open file: all zero before the first fsFileOpen and after fsFileClose. */
typedef struct FsFile {
  FILE *stream; /* the open stream, or null */
  char *name;   /* copy of the path opened, owned by the record, or null */
  int32_t user; /* for the caller; set to 0 by a successful open and by close */
} FsFile;

/* One listed file; the texts are owned by the list (fsFileSpecListFree). */
typedef struct FsFileSpec {
  char *drive;     /* up to and including the colon, or "" */
  char *directory; /* up to and including the last backslash, or "" */
  char *name;      /* the file name up to its first dot */
  char *extension; /* the file name after its first dot, without the dot */
} FsFileSpec;

/* Splits `path` into each output given (null outputs are skipped), each first
 * made empty: `directory` up to and including the last backslash, `name` from
 * there to the first dot, `extension` from the last dot on, dot included
 * (C:\data\run.tar.gz gives C:\data\, run, .gz). Each output needs
 * strlen(path) + 1 bytes. A null `path` leaves every output empty. */
FSKIT_API void fsFileParse(const char *path, char *directory, char *name, char *extension);

/* 1 when the file or directory `path` exists (its status can be read), else 0. */
FSKIT_API int32_t fsFileExists(const char *path);

/* Opens `path` with fopen(path, mode) into `file`, whose name becomes a copy of
 * `path` (replacing the previous one; a stream still open in the record is
 * not closed). 1 when open. On failure 0, stream and name null, and, when
 * `errText` is given, "%d %s" with errno and strerror(errno) written into it
 * (12 and "Not enough memory" when the name cannot be copied). `errText`
 * needs 80 bytes: a longer system text (some translations are) is cut at a
 * whole character, the number kept. A null path or mode fails with 22
 * (EINVAL); a null `file` just gives 0. */
FSKIT_API int32_t fsFileOpen(const char *path, const char *mode, FsFile *file, char *errText);

/* Closes the record's stream and empties the record (all fields zero). 1 when
 * a stream was closed without error; 0 when there was none, or closing failed
 * (then `errText`, if given, receives "%d %s" with errno and its text, in
 * 80 bytes as fsFileOpen's). */
FSKIT_API int32_t fsFileClose(FsFile *file, char *errText);

/* The modification time of `path` as local time: `text` receives
 * yyyymmddhhmmss+0000 and `value` the digits before the + as a number
 * (19991231235959.0). The year is printed as fsDateTime's layout 6 prints
 * it: 4 digits (blank-padded), more after 9999; 26 bytes hold the stamp of
 * every time the system represents (years up to 2147483647). A year from 0 to
 * 99 counts in the current century (year 5 gives 2005). 0, with "" and 0.0,
 * when the status of `path` cannot be read, and for a date before year 0
 * (then fsDateTime's "Unable to generate valid input date from: TEXT" is on
 * standard error). A null `text` or `value` is not written. */
FSKIT_API int32_t fsLastModified(const char *path, char *text, double *value);

/* The size of an open stream in bytes; the stream is left at its start
 * (offset 0), not where it was. -1 for an unseekable or null stream and for a
 * size beyond 2147483647 bytes. */
FSKIT_API int32_t fsFileSize(FILE *stream);

/* Appends `sub` and a backslash to `directory`, with a backslash before `sub`
 * unless `directory` ends in one; an empty `directory` becomes "\sub\". The
 * buffer must have room for the result. A null `sub` counts as "", a null
 * `directory` is left alone. Always 1. */
FSKIT_API int32_t fsAppendSubDir(char *directory, const char *sub);

/* Frees the texts of the first `count` records of *list (none when `count` is
 * below 1), then the block, and sets *list to null. A null `list` or *list
 * does nothing. fsReadDirFree is the same function. */
FSKIT_API void fsFileSpecListFree(int32_t count, FsFileSpec **list);
FSKIT_API void fsReadDirFree(int32_t count, FsFileSpec **list);

/* Lists the names in `directory` that match `namePattern` followed by
 * `extPattern` (".*" when null or empty): `*` any run of characters, `?` any
 * one, case-sensitive, and a final ".*" also matches names without a dot (on
 * Windows: FindFirstFileA's own matching, which ignores case).
 * Returns the number of records put in *list, a block of consecutive records
 * in the order the directory gives them; names beginning with a dot are
 * skipped, and directories are listed like files. Each record's name is split
 * at its first dot (run.tar.gz: run, tar.gz); its drive and directory are the
 * same for all, such that drive + directory is the prefix the search used
 * (the directory text with a backslash added unless empty or ending in one).
 * 0 when nothing matches or the directory cannot be read, *list then holding
 * an empty block to release with fsReadDirFree(0, list); 0 with *list null
 * when the block cannot grow (nothing is leaked; a full block grows when the
 * next name arrives, also one that is skipped). A text that cannot be copied
 * is null in its record; the listing goes on.
 * Limits: a drive longer than 79 characters, a directory part longer than
 * 255 or a whole pattern longer than 255 give 0 records (an empty block);
 * bases and extensions of found names are cut to 79 characters. A null
 * `directory` or `namePattern` counts as ""; a null `list` gives 0.
 * ntReadDir is the same. */
FSKIT_API int32_t fsReadDir(const char *directory, const char *namePattern,
                            const char *extPattern, FsFileSpec **list);
FSKIT_API int32_t ntReadDir(const char *directory, const char *namePattern,
                            const char *extPattern, FsFileSpec **list);

/* Creates the directory `path` (its parent must exist). 1 when it exists
 * afterwards, created now or before; 0 otherwise, also when a file that is not
 * a directory has that name. */
FSKIT_API int32_t fsMakeDir(const char *path);

/* Removes the empty directory `path`: 1 when removed, else 0. Paths longer
 * than 255 characters are not cut but refused (0). */
FSKIT_API int32_t fsRemoveDirectory(const char *path);

FSKIT_END_DECLS

#endif
