#pragma once

/// The calls of the ECW kit that MapAnchor makes, answered from the files' headers.
/// They keep the kit's names and meanings, so that a build with the kit can take their
/// place (MAPANCHOR_WITH_ECW_SDK).

/// What a file says of its place. The texts belong to the view.
struct NCSFileViewFileInfoEx {
    int eCellSizeUnits = 0;
    double fCellIncrementX = 0.0;
    double fCellIncrementY = 0.0;
    double fOriginX = 0.0;
    double fOriginY = 0.0;
    char* szDatum = nullptr;
    char* szProjection = nullptr;
};

/// An open file.
struct NCSFileView;

using NCSError = int;
constexpr NCSError NCS_SUCCESS = 0;
constexpr NCSError NCS_FAILURE = 1;

using NCSRefresh = int (*)(NCSFileView*);

NCSError NCScbmOpenFileView(const char* name, NCSFileView** view, NCSRefresh refresh);
NCSError NCScbmGetViewFileInfoEx(NCSFileView* view, NCSFileViewFileInfoEx** info);
/// A position other than that of the plain pixels, or the name of a system.
bool NCSIsFileInfoExGeoreferenced(const NCSFileViewFileInfoEx* info);
NCSError NCScbmCloseFileViewEx(NCSFileView* view, bool freeCache);
NCSError NCScbmCloseFileView(NCSFileView* view);
