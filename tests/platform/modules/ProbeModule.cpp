#include "Export.h"

extern "C" CVARS_API int AnswerOfProbe() { return 42; }
