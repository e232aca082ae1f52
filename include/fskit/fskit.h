/* fskit: the whole public interface. Each family's header can also be
 * included on its own. */
#ifndef FSKIT_FSKIT_H
#define FSKIT_FSKIT_H

/* frame */
#include <fskit/frame.h>
/* strings */
/* ini */
/* chemistry */
/* numformat */
/* datetime */
/* sort */
#include <fskit/sort.h>
/* files */
/* cmdline */
/* util */
#include <fskit/version.h>

#endif
