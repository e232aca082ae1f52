/* SPDX-License-Identifier: MIT */
/* fskit: the whole public interface. Each family's header can also be
 * included on its own. */
#ifndef FSKIT_FSKIT_H
#define FSKIT_FSKIT_H

/* frame */
#include <fskit/frame.h>
/* strings */
#include <fskit/strings.h>
/* ini */
#include <fskit/ini.h>
/* chemistry */
#include <fskit/chemistry.h>
/* numformat */
#include <fskit/numformat.h>
/* datetime */
#include <fskit/datetime.h>
/* sort */
#include <fskit/sort.h>
/* files */
#include <fskit/files.h>
/* cmdline */
#include <fskit/cmdline.h>
/* util */
#include <fskit/util.h>
#include <fskit/version.h>

#endif
