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
#else
#  define FSKIT_BEGIN_DECLS
#  define FSKIT_END_DECLS
#endif

/* The parameter list of a function that accepts any arguments and ignores
 * them; programs written for the original interface pass some. C++ and C23
 * write (...). Before C23 only the empty list () accepts arguments, so it
 * stays, declared between FSKIT_BEGIN_ANY_ARGS and FSKIT_END_ANY_ARGS, which
 * keep -Wstrict-prototypes quiet for those lines alone. A C23 compiler that
 * rejects (...) without a named parameter (GCC before 13, clang before 16)
 * also still reads () as "any arguments" (GCC 12 and clang 14 do), so it gets
 * the empty list too. */
#if defined(__cplusplus)
#  define FSKIT_ANY_ARGS ...
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ > 201710L && \
    ((defined(__clang__) && __clang_major__ >= 16) || \
     (!defined(__clang__) && defined(__GNUC__) && __GNUC__ >= 13))
#  define FSKIT_ANY_ARGS ...
#else
#  define FSKIT_ANY_ARGS
#  define FSKIT_EMPTY_ANY_ARGS 1
#endif

#if defined(FSKIT_EMPTY_ANY_ARGS) && defined(__GNUC__) && \
    (defined(__clang__) || __GNUC__ > 4 || (__GNUC__ == 4 && __GNUC_MINOR__ >= 6))
#  define FSKIT_BEGIN_ANY_ARGS \
     _Pragma("GCC diagnostic push") \
     _Pragma("GCC diagnostic ignored \"-Wstrict-prototypes\"")
#  define FSKIT_END_ANY_ARGS _Pragma("GCC diagnostic pop")
#else
#  define FSKIT_BEGIN_ANY_ARGS
#  define FSKIT_END_ANY_ARGS
#endif

/* FSKIT_PRINTF(f, a): argument f is a printf format whose values start at
 * argument a, so that GCC and clang check the callers. The library formats
 * with the C99 printf, which GCC for Windows calls gnu_printf. */
#if defined(__MINGW32__) && !defined(__clang__)
#  define FSKIT_PRINTF(f, a) __attribute__((format(gnu_printf, f, a)))
#elif defined(__GNUC__)
#  define FSKIT_PRINTF(f, a) __attribute__((format(printf, f, a)))
#else
#  define FSKIT_PRINTF(f, a)
#endif

#endif
