#pragma once

#include "wide/WideMap.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace VellumLib {

class CPDFDocument;

/// A PDF that is read beyond the rules: any of its pages, and whatever maps are on them in
/// whichever form. What it hands out must not outlive it.
class WideDocument {
public:
    /// Throws a PdfError, or a CCorruptedPDFException, where the file cannot be opened. With
    /// `first_page_alone` the other pages may be missing; a file whose cross-references are
    /// damaged is then searched for that page, and an encrypted one opens with the password.
    WideDocument(const std::string& utf8_path, bool first_page_alone, const std::string& password = {});
    /// A document that is open already, and stays the caller's.
    explicit WideDocument(CPDFDocument& document);
    ~WideDocument();
    WideDocument(const WideDocument&) = delete;
    WideDocument& operator=(const WideDocument&) = delete;

    const WidePages& Pages() const { return *pages_; }
    /// On the file as a whole.
    const WideRemarks& Remarks() const { return remarks_; }
    /// In the order of the file, viewports first.
    static std::vector<WideMap> MapsOf(const WidePage& page);
    /// Which of the first page's maps the rules read; empty where they refuse the file.
    std::optional<std::size_t> MapOfRules(const WidePage& first, const std::vector<WideMap>& maps);

private:
    void FindPages();

    WideRemarks remarks_;
    std::unique_ptr<CPDFDocument> owned_;
    CPDFDocument& document_;
    std::unique_ptr<WidePages> pages_;
};

/// Where no map is named: that of the rules, else the largest that can be read, else the first.
std::size_t DefaultMap(const std::vector<WideMap>& maps, std::optional<std::size_t> of_rules);
/// The largest of those that can be read, the first of equals; the first where none can be.
std::size_t LargestMap(const std::vector<WideMap>& maps);

}  // namespace VellumLib
