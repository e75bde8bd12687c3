#pragma once

/// Marks what the Tellurion library exports; everything else is hidden.
#if defined(_WIN32)
#if defined(TELLURION_BUILDING)
#define TELLURION_EXPORT __declspec(dllexport)
#else
#define TELLURION_EXPORT __declspec(dllimport)
#endif
#else
#define TELLURION_EXPORT __attribute__((visibility("default")))
#endif
