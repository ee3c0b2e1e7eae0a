#pragma once

/// Marks every class and function that a front end calls or derives from; everything else stays
/// hidden in the shared library.
#if defined(__GNUC__)
#define QUILLPG_API __attribute__((visibility("default")))
#else
#define QUILLPG_API
#endif
