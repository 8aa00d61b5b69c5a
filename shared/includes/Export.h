#pragma once

/// Marks what leaves a shared object; everything else is hidden.
#define CVARS_API __attribute__((visibility("default")))
