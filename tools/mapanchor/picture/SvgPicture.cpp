#include "picture/SvgPicture.h"

#include <dlfcn.h>

#include <array>
#include <filesystem>
#include <stdexcept>

namespace Tool {

namespace fs = std::filesystem;

namespace {

constexpr const char* kInstead = "; write an SVG file instead";

/// Beside the program, in the build as where it is installed.
fs::path ModulePath() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return program.parent_path() / MAPANCHOR_MODULE_FOLDER / "mapanchor_picture.so";
}

PngOfSvgFunction LoadRenderer() {
    if (!MAPANCHOR_HAS_PICTURE)
        throw std::runtime_error(std::string("This build draws no PNG, as it was made without librsvg") +
                                 kInstead + ".");
    // It stays loaded: its libraries keep what they made to the end of the process.
    void* const module = dlopen(ModulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const function = module ? dlsym(module, kPngOfSvgName) : nullptr;
    if (!function) {
        const char* const reason = dlerror();
        throw std::runtime_error(std::string("The renderer of PNG cannot be loaded: ") +
                                 (reason ? reason : "no function in it") + kInstead + ".");
    }
    return reinterpret_cast<PngOfSvgFunction>(function);
}

}  // namespace

std::string PngOfSvg(const std::string& svg) {
    constexpr double kZoom = 2.0;
    const PngOfSvgFunction render = LoadRenderer();
    std::string png;
    std::array<char, 256> why{};
    const auto sink = [](void* context, const unsigned char* bytes, unsigned long count) {
        static_cast<std::string*>(context)->append(bytes, bytes + count);
    };
    if (render(svg.data(), svg.size(), kZoom, sink, &png, why.data(), why.size()) != 0)
        throw std::runtime_error(std::string("The drawing cannot be rendered: ") + why.data() + kInstead +
                                 ".");
    return png;
}

}  // namespace Tool
