// Export and linkage macros shared by every public header.
#ifndef TEVBASE_CONFIG_H
#define TEVBASE_CONFIG_H

// The library is built with hidden visibility; everything of its interface carries TEVBASE_API.
#if defined(__GNUC__)
#define TEVBASE_API __attribute__((visibility("default")))
#else
#define TEVBASE_API
#endif

// Plain C-style functions have C linkage.
#ifdef __cplusplus
#define TEVBASE_C_BEGIN extern "C" {
#define TEVBASE_C_END }
#else
#define TEVBASE_C_BEGIN
#define TEVBASE_C_END
#endif

#endif
