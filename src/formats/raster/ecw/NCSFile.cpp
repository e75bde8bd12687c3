#include "raster/ecw/NCSFile.h"

#include <Tellurion/RandomAccessFile.h>
#include "raster/ecw/EcwHeader.h"

#include <memory>
#include <string>
#include <string_view>

using MapAnchor::EcwHeader;
using MapAnchor::EcwKind;
using Tellurion::BString;
using Tellurion::RandomAccessFile;

struct NCSFileView {
    Tellurion::RandomAccessFile file;
    BString path;
    std::string head;
    EcwKind kind = EcwKind::Unknown;
    EcwHeader header;
    NCSFileViewFileInfoEx info;
};

namespace {

bool IsPixelStep(double increment) {
    return increment == 0.0 || increment == 1.0;
}

bool IsName(const char* text) {
    return text && *text && std::string_view(text) != "RAW";
}

}  // namespace

NCSError NCScbmOpenFileView(const char* name, NCSFileView** view, NCSRefresh) {
    auto opened = std::make_unique<NCSFileView>();
    opened->path = name;
    if (!opened->file.Open(opened->path)) return NCS_FAILURE;
    opened->head = opened->file.Window(0, MapAnchor::kEcwHead);
    opened->kind = MapAnchor::TellEcwKind(opened->head);
    if (opened->kind == EcwKind::Unknown) return NCS_FAILURE;
    *view = opened.release();
    return NCS_SUCCESS;
}

NCSError NCScbmGetViewFileInfoEx(NCSFileView* view, NCSFileViewFileInfoEx** info) {
    auto header = MapAnchor::ReadEcwHeader(view->file, view->head, view->kind, view->path);
    if (!header) return NCS_FAILURE;
    view->header = *std::move(header);
    view->info = {view->header.units,
                  view->header.increment_x,
                  view->header.increment_y,
                  view->header.origin_x,
                  view->header.origin_y,
                  view->header.datum.data(),
                  view->header.projection.data()};
    *info = &view->info;
    return NCS_SUCCESS;
}

bool NCSIsFileInfoExGeoreferenced(const NCSFileViewFileInfoEx* info) {
    const bool plain_pixels = info->fOriginX == 0.0 && info->fOriginY == 0.0 &&
                              IsPixelStep(info->fCellIncrementX) && IsPixelStep(info->fCellIncrementY);
    return !plain_pixels || IsName(info->szDatum) || IsName(info->szProjection);
}

NCSError NCScbmCloseFileViewEx(NCSFileView* view, bool) {
    return NCScbmCloseFileView(view);
}

NCSError NCScbmCloseFileView(NCSFileView* view) {
    delete view;
    return NCS_SUCCESS;
}
