// SPDX-License-Identifier: MIT
// The Windows side of platform/locks.h: slim reader/writer locks.
#include <windows.h>

#include "platform/locks.h"

namespace fskit::platform {

static_assert(sizeof(SRWLOCK) == sizeof(void *), "an SRWLOCK is one pointer");

namespace {
PSRWLOCK srw(void *&state) { return reinterpret_cast<PSRWLOCK>(&state); }
}  // namespace

void SharedMutex::lock() { AcquireSRWLockExclusive(srw(state_)); }
bool SharedMutex::try_lock() { return TryAcquireSRWLockExclusive(srw(state_)) != 0; }
void SharedMutex::unlock() { ReleaseSRWLockExclusive(srw(state_)); }
void SharedMutex::lock_shared() { AcquireSRWLockShared(srw(state_)); }
bool SharedMutex::try_lock_shared() { return TryAcquireSRWLockShared(srw(state_)) != 0; }
void SharedMutex::unlock_shared() { ReleaseSRWLockShared(srw(state_)); }

}  // namespace fskit::platform
