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

static int decodeVax(FILE *file) {
  unsigned char word[4];
  size_t got;
  long n = 0;
  while ((got = fread(word, 1, sizeof word, file)) == sizeof word) {
    float value;
    decodeVaxFloat(word, &value); /* a null destination would convert in place */
    printf("%ld: %02X %02X %02X %02X = %.9g\n", ++n, word[0], word[1], word[2], word[3], value);
  }
  if (got != 0) printf("%zu bytes left over at the end\n", got);
  return got == 0 ? 0 : 1;
}

static int decodeQuor(FILE *file) {
  unsigned char record[6];
  size_t got;
  long n = 0;
  while ((got = fread(record, 1, sizeof record, file)) == sizeof record) {
    double mass;
    float intensity;
    uint8_t flags;
    decodeQuorMassInty(record, &mass, &intensity, &flags);
    printf("%ld: mass %.6f intensity %.1f flags %u\n", ++n, mass, intensity, flags);
  }
  if (got != 0) printf("%zu bytes left over at the end\n", got);
  return got == 0 ? 0 : 1;
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
  int status = strcmp(argv[1], "vaxf") == 0 ? decodeVax(file) : decodeQuor(file);

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
