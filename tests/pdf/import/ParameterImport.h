#pragma once

#include "import/CGeoPDFImport.h"

#include <map>
#include <string>

namespace VellumLib {

/// The importer without a file: what it would have read is set by the test.
class ParameterImport final : public CGeoPDFImport {
public:
    explicit ParameterImport(std::map<int, std::string> parameters) { Parameters = std::move(parameters); }
    ~ParameterImport() = default;

    void Set(int number, const std::string& value) { Parameters[number] = value; }

    using CGeoPDFImport::CTM;
    using CGeoPDFImport::Neatline;
    using CGeoPDFImport::PageHeight;
    using CGeoPDFImport::PageWidth;
    using CGeoPDFImport::Registration;

    void ReadCTM() override {}
    void ReadRegistration() override {}
    void ReadProjection() override {}
    void ReadNeatline() override {}
    void ReadPageSize() override {}
};

}  // namespace VellumLib
