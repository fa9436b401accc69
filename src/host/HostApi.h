// Marks what the shared library quenraHost offers to the module and to the application.
#pragma once

#if defined(_WIN32)
#if defined(QUENRA_HOST_BUILD)
#define QUENRA_HOST_API __declspec(dllexport)
#else
#define QUENRA_HOST_API __declspec(dllimport)
#endif
#else
#define QUENRA_HOST_API __attribute__((visibility("default")))
#endif
