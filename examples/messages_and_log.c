/* SPDX-License-Identifier: MIT */
/* Taking over the library's messages and log, and asking a long job to stop.
 *
 *   messages_and_log
 *
 * The library reports through fsMessage(): by default the text goes to
 * standard output, and to the file "fsmessage.log" in the current directory
 * once logging is switched on. A program registers its own functions to send
 * the texts elsewhere. This one shows, in turn: the default layout, a message
 * function of its own (here it also receives a message of the library's
 * element table), the default log file, a log function of its own and a stop
 * function. */
#include <fskit/fskit.h>
#include <stdio.h>

/* A message function receives `*count` texts, each with its layout code
 * (0: a plain line; 1: a failure) and the caller's auxiliary code. Everything
 * it is given lives only for the call. */
static int32_t toStdoutTagged(const char *routine, int32_t *count, int32_t *codes,
                              int32_t *auxCodes, int32_t *lengths, char **texts) {
  for (int32_t i = 0; i < *count; ++i)
    printf("[app] %s %s (code %d, aux %d, %d characters)\n", codes[i] == 0 ? "note" : "error",
           texts[i], (int)codes[i], (int)auxCodes[i], (int)lengths[i]);
  (void)routine;
  return 0;
}

/* A log function has the same form; this one keeps its own file. */
static FILE *appLog;
static int32_t toAppLog(const char *routine, int32_t *count, int32_t *codes,
                        int32_t *auxCodes, int32_t *lengths, char **texts) {
  for (int32_t i = 0; i < *count && appLog != NULL; ++i)
    fprintf(appLog, "%s|%s\n", routine, texts[i]);
  (void)codes, (void)auxCodes, (void)lengths;
  return 0;
}

/* A stop function: non-zero asks the work in progress to stop. Here the
 * "operator" asks after the third step. */
static int stepsDone;
static int32_t stopAfterThreeSteps(void) { return stepsDone >= 3; }

static void printFile(const char *name) {
  char line[256];
  FILE *file = fopen(name, "r");
  if (file == NULL) return;
  while (fgets(line, sizeof line, file) != NULL) printf("  | %s", line);
  fclose(file);
}

int main(void) {
  /* 1. The default message function: "routine: text" for code 1, the text
   *    alone for code 0, each followed by a line feed. */
  fsMessage("calibrate", 1, 0, "Reference peak %d not found", 3);
  fsMessage("calibrate", 0, 0, "Calibration uses %d of %d peaks", 11, 12);

  /* 2. Our own function in place of the default; the previous one is kept
   *    so that it can be put back. Messages of the library itself (here the
   *    element table failing to open a file) arrive through it too. */
  FsMsgFunction previous = fsMsgFunctionIs();
  fsRegisterMessage(toStdoutTagged);
  fsMessage("calibrate", 1, 42, "Reference peak %d not found", 3);
  fsLoadElemTable("no-such-element-file.tbl");
  char *lines[] = {"first of two", "second of two"};
  int32_t count = 2, codes[] = {0, 1}, auxCodes[] = {0, 7};
  fsMessages("calibrate", &count, codes, auxCodes, lines);
  fsRegisterMessage(previous);

  /* 3. The default log: every message also goes to fsmessage.log in the
   *    current directory (the file is started afresh). fsRegisterMsgLog(NULL)
   *    closes it and switches logging off. */
  fsRegisterMsgLog(fsDefaultMsgLogFunction);
  fsMessage("acquire", 1, 0, "Detector voltage low");
  fsRegisterMsgLog(NULL);
  printf("fsmessage.log:\n");
  printFile("fsmessage.log");

  /* 4. Our own log function, with the screen silenced: a null message
   *    function shows nothing, the log still receives everything. */
  appLog = fopen("app.log", "w");
  if (appLog == NULL) return 1;
  fsRegisterMessage(NULL);
  fsRegisterMsgLog(toAppLog);
  fsMessage("acquire", 1, 0, "Scan %d rejected", 17);
  fsMessage("acquire", 0, 0, "Run finished");
  fsRegisterMsgLog(NULL);
  fsDefaultMessage(); /* the default message function again */
  fclose(appLog);
  printf("app.log:\n");
  printFile("app.log");

  /* 5. A long job polls fsCheckStop() between its steps. */
  fsRegisterStopFunction(stopAfterThreeSteps);
  while (fsCheckStop() == 0) {
    ++stepsDone;
    fsMessage("acquire", 3, 0, "step %d", stepsDone); /* code 3 ends in a carriage return */
  }
  fsMessage("acquire", 0, 0, "%s", ""); /* an empty line; "" alone is an empty format to GCC */
  fsRegisterStopFunction(NULL);
  printf("stopped after %d steps\n", stepsDone);
  return 0;
}
