// "user32.dll": counts of what a process has of the graphics interface.

#include "Export.h"
#include "platform/ProcessStatus.h"

extern "C" CVARS_API GetGuiResourcesFunction GetGuiResources;

// The platform draws nothing itself: no process has windows or graphics objects of it.
DWORD GetGuiResources(HANDLE, DWORD) { return 0; }
