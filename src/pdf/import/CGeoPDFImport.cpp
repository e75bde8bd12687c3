#include "import/CGeoPDFImport.h"

#include <cmath>

namespace VellumLib {
namespace {

using Pair = CMeasureDictionaryData::Pair;

/// What a neatline encloses. Begins turned inside out: without points it stays so.
struct Enclosure {
    double min_x;
    double min_y;
    double max_x = 0.0;
    double max_y = 0.0;

    void Add(const Pair& point) {
        if (point.first < min_x) min_x = point.first;
        if (point.second < min_y) min_y = point.second;
        if (point.first > max_x) max_x = point.first;
        if (point.second > max_y) max_y = point.second;
    }
    Pair FractionOf(double x, double y) const {
        return {(x - min_x) / (max_x - min_x), (y - min_y) / (max_y - min_y)};
    }
};

}  // namespace

double NeatlineArea(const std::vector<Pair>& points) {
    double sum = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Pair& here = points[i];
        const Pair& next = points[(i + 1) % points.size()];
        sum += next.second * here.first;
        sum -= next.first * here.second;
    }
    return std::fabs(sum * 0.5);
}

CGeoPDFImport::CGeoPDFImport()
    : ParameterKeys(LGIParameterKeys()), Datums(LGIDatums()), Projections(LGIProjections()) {}

void CGeoPDFImport::Import() {
    ReadCTM();
    ReadRegistration();
    ReadProjection();
    ReadPageSize();
    ReadNeatline();

    CMeasureDictionaryData record;
    record.CoordSys.WKT = BuildWKT();
    // A code to try all the same, unlike the -1 of the other dialect.
    record.CoordSys.EPSG = 0;
    record.CTM = CTM;
    Enclosure box{.min_x = PageWidth, .min_y = PageHeight};
    for (const Pair& point : Neatline) {
        record.Bounds.push_back(point);
        box.Add(point);
    }
    record.BBox = {box.min_x, box.min_y, box.max_x, box.max_y};
    for (const CRegistrationPoint& point : Registration) {
        record.GPTS.emplace_back(point.WorldY, point.WorldX);
        record.LPTS.push_back(box.FractionOf(point.PageX, point.PageY));
    }
    record.GPTSInCoordSys = true;
    Measures.push_back(std::move(record));
}

}  // namespace VellumLib
