#pragma once

#include "ReadOptions.h"

#include <Tellurion/BGeoReference.h>

#include <optional>
#include <string>

/// A PDF that is georeferenced in place: its page shows the raster.

bool IsPdfName(const std::string& file);

/// The raster's size in pixels.
struct RasterSize {
    long width = 0;
    long height = 0;
};

/// What the page measures at the resolution; empty when the file is no PDF that can
/// be written.
std::optional<RasterSize> SizeOfPage(const std::string& pdf, double dpi);

/// How far what was saved lies from what was meant, at the worst corner of the raster.
struct Closeness {
    double pixels = 0.0;
    double metres = 0.0;
};

/// Reads the PDF back. Empty when one of the two has no transform or no system, or a
/// corner has no place in it; `fault` says which.
std::optional<Closeness> CompareAtCorners(const std::string& pdf, const Tellurion::BGeoReference& meant,
                                          RasterSize size, std::string& fault);
