// A dump library of version 6.0.0.0 that does not export MiniDumpWriteDump.

extern "C" __attribute__((visibility("default"))) int MiniDumpReadDumpStream() { return 0; }
