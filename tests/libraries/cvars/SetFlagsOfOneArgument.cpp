// Flags without a word whether they are set, cleared or replace all must not compile.

#include "CCvarDouble.h"
#include "CvarObject.h"

bool SetsFlags(CvarObject<CCvarDouble>& cvar) {
  (void)cvar.SetFlags(CVARFLAG_READONLY, true);
  (void)cvar.SetFlags(1L);
#ifdef CVARS_MUST_NOT_COMPILE
  (void)cvar.SetFlags(CVARFLAG_READONLY);
#endif
  return cvar.SetFlags(0x4000);
}
