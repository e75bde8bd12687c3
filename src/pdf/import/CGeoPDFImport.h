#pragma once

#include "import/CLGIDatum.h"
#include "import/CLGIProjection.h"
#include "import/CMeasureDictionaryData.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

class OGRSpatialReference;

namespace VellumLib {

/// A control point of the LGIDict dialect: page points, and the file's own world values.
struct CRegistrationPoint {
    double PageX = 0.0;
    double PageY = 0.0;
    double WorldY = 0.0;
    double WorldX = 0.0;
};

/// The reader of the LGIDict dialect: tables, order of the steps, arithmetic. Where
/// the values come from is left to the class below. Lives for one read.
class CGeoPDFImport {
public:
    CGeoPDFImport(const CGeoPDFImport&) = delete;
    CGeoPDFImport& operator=(const CGeoPDFImport&) = delete;

    virtual void ReadCTM() = 0;
    virtual void ReadRegistration() = 0;
    virtual void ReadProjection() = 0;
    virtual void ReadNeatline() = 0;
    virtual void ReadPageSize() = 0;

    /// Fills the measures: exactly one record.
    void Import();
    std::vector<CMeasureDictionaryData>& GetMeasures() { return Measures; }

    /// The coordinate system of `Parameters` as well-known text, longitude before
    /// latitude. A foot unit divides the terms of `CTM`, which count as metres.
    std::string BuildWKT();

protected:
    using Pair = CMeasureDictionaryData::Pair;

    CGeoPDFImport();
    ~CGeoPDFImport() = default;

    void ApplyDatum(OGRSpatialReference& srs);
    void ApplyProjection(OGRSpatialReference& srs);
    /// What a reader knows beyond the tables, once datum and projection are set. The text
    /// is kept by `Parameters`, so that nothing else may go into it.
    virtual void AmendSystem(OGRSpatialReference&) {}

    double PageWidth = 0.0;
    double PageHeight = 0.0;
    std::string Description;
    std::vector<double> CTM;
    std::vector<CRegistrationPoint> Registration;
    std::map<int, std::string> Parameters;         ///< of the projection, by LGIParameter
    std::map<int, std::string> DisplayParameters;  ///< nothing fills it
    std::vector<Pair> Neatline;
    const std::map<int, std::string>& ParameterKeys;
    const LGIDatumMap& Datums;
    const LGIProjectionMap& Projections;
    std::vector<CMeasureDictionaryData> Measures;

private:
    std::int32_t ProjectionId();
    void ApplyStatePlane(OGRSpatialReference& srs);
    void ApplyLinearUnits(OGRSpatialReference& srs);
    void ApplyFalseOrigin(OGRSpatialReference& srs);
    void ScaleCTM();
};

/// The area of the polygon through the points, closed on the first; 0.0 without any.
double NeatlineArea(const std::vector<CMeasureDictionaryData::Pair>& points);

}  // namespace VellumLib
