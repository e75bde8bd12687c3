#pragma once

#include <string>

namespace Tool {

/// The drawing as a PNG file. A std::runtime_error when this build has no renderer, it is not
/// installed, or it fails. The renderer is a module of its own, which is loaded here.
std::string PngOfSvg(const std::string& svg);

/// The face of the module mapanchor_picture: `sink` gets the bytes of the PNG piece by piece. 0
/// when all went well, else `why` says what did not.
using PngOfSvgFunction = int (*)(const char* svg, unsigned long size, double zoom,
                                 void (*sink)(void* context, const unsigned char* bytes, unsigned long count),
                                 void* context, char* why, unsigned long why_size);
inline constexpr const char* kPngOfSvgName = "mapanchor_png_of_svg";

}  // namespace Tool
