/* SPDX-License-Identifier: MIT */
/* fskit: export and linkage macros shared by every public header. */
#ifndef FSKIT_EXPORT_H
#define FSKIT_EXPORT_H

/* FSKIT_API marks a name that libfskit exports; everything else in the
 * library is hidden. On Windows a program using fskit.dll imports the names
 * (the data tables need that); one linked with the static libfskit.a
 * defines FSKIT_STATIC (its CMake target does). */
#if defined(_WIN32)
#  if defined(FSKIT_BUILDING)
#    define FSKIT_API __declspec(dllexport)
#  elif defined(FSKIT_STATIC)
#    define FSKIT_API
#  else
#    define FSKIT_API __declspec(dllimport)
#  endif
#else
#  define FSKIT_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#  define FSKIT_BEGIN_DECLS extern "C" {
#  define FSKIT_END_DECLS }
/* Functions whose arguments the library ignores accept any arguments. */
#  define FSKIT_ANY_ARGS ...
#else
#  define FSKIT_BEGIN_DECLS
#  define FSKIT_END_DECLS
#  define FSKIT_ANY_ARGS
#endif

#endif
