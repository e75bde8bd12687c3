#pragma once

/// Marks what the MapAnchor library exports; everything else is hidden.
#if defined(_WIN32)
#if defined(MAPANCHOR_BUILDING)
#define MAPANCHOR_EXPORT __declspec(dllexport)
#else
#define MAPANCHOR_EXPORT __declspec(dllimport)
#endif
#else
#define MAPANCHOR_EXPORT __attribute__((visibility("default")))
#endif
