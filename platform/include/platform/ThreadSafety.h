#pragma once

// Annotations that clang's thread-safety analysis checks; other compilers ignore them.
#if defined(__clang__)
#define CVARS_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define CVARS_THREAD_ANNOTATION(x)
#endif

#define CVARS_CAPABILITY(name) CVARS_THREAD_ANNOTATION(capability(name))
#define CVARS_SCOPED_CAPABILITY CVARS_THREAD_ANNOTATION(scoped_lockable)
#define CVARS_GUARDED_BY(lock) CVARS_THREAD_ANNOTATION(guarded_by(lock))
#define CVARS_REQUIRES(lock) CVARS_THREAD_ANNOTATION(requires_capability(lock))
#define CVARS_ACQUIRE(...) CVARS_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define CVARS_RELEASE(...) CVARS_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define CVARS_TRY_ACQUIRE(...) CVARS_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define CVARS_NO_THREAD_SAFETY_ANALYSIS CVARS_THREAD_ANNOTATION(no_thread_safety_analysis)
