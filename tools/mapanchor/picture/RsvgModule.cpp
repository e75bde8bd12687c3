#include "picture/SvgPicture.h"

#include <librsvg/rsvg.h>

#include <cmath>
#include <cstdio>
#include <memory>

namespace {

struct Sink {
    void (*put)(void* context, const unsigned char* bytes, unsigned long count);
    void* context;
};

cairo_status_t Write(void* sink, const unsigned char* bytes, unsigned int count) {
    static_cast<Sink*>(sink)->put(static_cast<Sink*>(sink)->context, bytes, count);
    return CAIRO_STATUS_SUCCESS;
}

struct Owner {
    void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
    void operator()(GError* error) const { g_error_free(error); }
};

template <class Object>
using Owned = std::unique_ptr<Object, Owner>;

int Fail(GError* error, const char* otherwise, char* why, unsigned long size) {
    const Owned<GError> owned(error);
    std::snprintf(why, size, "%s", error ? error->message : otherwise);
    return 1;
}

}  // namespace

/// See Tool::PngOfSvgFunction. The drawing may refer to nothing outside itself.
extern "C" __attribute__((visibility("default"))) int mapanchor_png_of_svg(
    const char* svg, unsigned long size, double zoom,
    void (*put)(void* context, const unsigned char* bytes, unsigned long count), void* context, char* why,
    unsigned long why_size) {
    GError* error = nullptr;
    const Owned<RsvgHandle> handle(
        rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(svg), size, &error));
    if (!handle) return Fail(error, "it cannot be read", why, why_size);
    gdouble width = 0.0;
    gdouble height = 0.0;
    if (!rsvg_handle_get_intrinsic_size_in_pixels(handle.get(), &width, &height))
        return Fail(nullptr, "it has no size", why, why_size);
    const Owned<cairo_surface_t> surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(std::ceil(width * zoom)),
                                   static_cast<int>(std::ceil(height * zoom))));
    const Owned<cairo_t> cairo(cairo_create(surface.get()));
    cairo_set_source_rgb(cairo.get(), 1.0, 1.0, 1.0);
    cairo_paint(cairo.get());
    const RsvgRectangle viewport{0.0, 0.0, width * zoom, height * zoom};
    if (!rsvg_handle_render_document(handle.get(), cairo.get(), &viewport, &error))
        return Fail(error, "it cannot be drawn", why, why_size);
    Sink sink{put, context};
    const cairo_status_t status = cairo_surface_write_to_png_stream(surface.get(), Write, &sink);
    return status == CAIRO_STATUS_SUCCESS ? 0 : Fail(nullptr, cairo_status_to_string(status), why, why_size);
}
