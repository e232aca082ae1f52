// SPDX-License-Identifier: MIT
// The entry point of fskit.dll. The library keeps no per-thread state, so it
// asks not to be called at every thread start and end; its other state is
// static data, ready when the DLL is mapped.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(module);
  return TRUE;
}
