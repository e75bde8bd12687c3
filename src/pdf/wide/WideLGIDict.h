#pragma once

#include "import/CGeoPDFImport.h"
#include "import/ReadingBudget.h"
#include "wide/WideMap.h"

#include <optional>

namespace VellumLib {

/// An ellipsoid and a shift to WGS 84 that a "Datum" dictionary states.
struct WideDatum {
    std::string name;
    std::string ellipsoid;
    double semi_major = 0.0;
    double inverse_flattening = 0.0;
    std::vector<double> shift;  ///< three or seven terms, or none
};

/// The reader of one "LGIDict" entry as it is written by others: the tables, the order of the
/// steps and the arithmetic are those of the rules. Lives for one read.
class WideLGIDict final : public CGeoPDFImport {
public:
    WideLGIDict(const WidePage& page, const WideValue& entry, ReadingBudget& budget, WideMap& map);
    ~WideLGIDict() = default;

    void Read();

    void ReadCTM() override;
    void ReadRegistration() override;
    void ReadProjection() override;
    void ReadNeatline() override;
    void ReadPageSize() override;

private:
    void AmendSystem(OGRSpatialReference& srs) override;
    void ReadParameter(const WideValue& projection, int number, const std::string& key);
    void ReadDatum(const WideValue& projection);
    void ReadDatumDictionary(const WideValue& datum);
    void ReadScale();
    void AmendPolar(OGRSpatialReference& srs);
    double ParameterNumber(LGIParameter number) const;
    std::vector<double> ReadNumbers(const char* key);
    void NoteOrigins();
    void UseOwnText();
    void DoubtUnits();

    const WidePage& page_;
    const WideValue entry_;
    ReadingBudget& budget_;
    WideMap& map_;
    std::optional<WideDatum> datum_;
    std::vector<double> matrix_;  ///< as it is in the file
    std::string own_text_;        ///< of the system; empty where the file has none
};

}  // namespace VellumLib
