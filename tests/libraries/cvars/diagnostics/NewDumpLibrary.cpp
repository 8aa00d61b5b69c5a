// A dump library of version 10.0.19041.1, which must never be called.

#include <cstdlib>

extern "C" __attribute__((visibility("default"))) int MiniDumpWriteDump(void*, unsigned, void*,
                                                                        unsigned, const void*,
                                                                        const void*, const void*) {
  std::abort();
}
