/* SPDX-License-Identifier: MIT */
/* Decoding a file of foreign number words.
 *
 *   decode_words vaxf FILE   a file of DEC VAX F floating-point numbers
 *   decode_words quor FILE   a file of Quor six-byte mass/intensity records
 *
 * Each converter takes one value: the bytes as they lie in the file, and a
 * place for the IEEE number. The converters keep no state and print nothing,
 * so any thread may call them. */
#include <fskit/fskit.h>
#include <stdio.h>
#include <string.h>

/* Prints one value of the file: a VAX F number (4 bytes) or a Quor record
 * (6 bytes: intensity word, then mass word). */
static void printVax(long n, unsigned char *word) {
  float value;
  decodeVaxFloat(word, &value); /* a null destination converts in place */
  printf("%ld: %02X %02X %02X %02X = %.9g\n", n, word[0], word[1], word[2], word[3], value);
}

static void printQuor(long n, const unsigned char *record) {
  double mass;
  float intensity;
  uint8_t flags;
  decodeQuorMassInty(record, &mass, &intensity, &flags);
  printf("%ld: mass %.6f intensity %.1f flags %u\n", n, mass, intensity, flags);
}

int main(int argc, char **argv) {
  if (argc != 3 || (strcmp(argv[1], "vaxf") != 0 && strcmp(argv[1], "quor") != 0)) {
    fprintf(stderr, "usage: decode_words vaxf|quor FILE\n");
    return 2;
  }
  FILE *file = fopen(argv[2], "rb");
  if (file == NULL) {
    perror(argv[2]);
    return 1;
  }
  int vax = strcmp(argv[1], "vaxf") == 0;
  size_t size = vax ? 4 : 6, got;
  unsigned char bytes[6];
  long n = 0;
  while ((got = fread(bytes, 1, size, file)) == size) {
    if (vax) printVax(++n, bytes);
    else printQuor(++n, bytes);
  }
  if (got != 0) printf("%zu bytes left over at the end\n", got);
  int status = got == 0 ? 0 : 1;

  /* The other way: a number encoded for the old system, and back. The
   * intensity keeps its top 11 fraction bits and the mass 23, without
   * rounding. */
  double mass = 1234.5678, massBack;
  float intensity = 250000.0f, intensityBack;
  uint8_t flags = 1, flagsBack;
  unsigned char record[6];
  encodeQuorMassInty(&mass, &intensity, &flags, record);
  decodeQuorMassInty(record, &massBack, &intensityBack, &flagsBack);
  printf("%.4f, %.1f, %u -> %02X %02X %02X %02X %02X %02X -> %.10f, %.1f, %u\n", mass,
         intensity, flags, record[0], record[1], record[2], record[3], record[4], record[5],
         massBack, intensityBack, flagsBack);
  fclose(file);
  return status;
}
