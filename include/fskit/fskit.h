/* fskit: the whole public interface. Each family's header can also be
 * included on its own. */
#ifndef FSKIT_FSKIT_H
#define FSKIT_FSKIT_H

#include <fskit/frame.h>

#endif
