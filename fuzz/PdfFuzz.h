#pragma once

// What the fuzz targets of PDF share: which failures a file may end in, and a page that
// is put together in memory from the fuzzer's choices.

#include "ReferenceFuzz.h"

#include "import/ReadGeoPDF.h"
#include "objects/CCorruptedPDFException.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <podofo/podofo.h>

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace fuzz {

/// False where the operation ends in a failure that a file may be refused with. Any
/// other exception is a fault of the library and ends the run.
template <class Operation>
bool Survives(Operation operation) {
    try {
        operation();
        return true;
    } catch (const Tellurion::BException&) {
    } catch (const PoDoFo::PdfError&) {
    } catch (const VellumLib::CCorruptedPDFException&) {
    } catch (const std::runtime_error&) {
    }
    return false;
}

/// A document with one page, whose dictionary and objects 4 to 7 are made again for each
/// input: no file is read in between. 4 and 5 are dictionaries, 6 an array, 7 a number.
class PageInMemory {
public:
    PageInMemory() {
        const MemoryFile file("pdf");
        const std::string text = Template();
        file.Fill(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
        document_ = std::make_unique<VellumLib::CPDFDocument>(
            QString::fromUtf8(std::string(file.Path().Utf8()).c_str()));
        // Everything is loaded, since the file goes.
        for (PoDoFo::PdfObject* object : document_->Document().GetObjects())
            object->IsDictionary();
    }

    VellumLib::CPDFDocument& Document() { return *document_; }
    /// The page's dictionary, without anything but its place in the tree.
    PoDoFo::PdfDictionary& FreshPage() {
        PoDoFo::PdfDictionary& page = document_->Document().GetPage(0)->GetObject()->GetDictionary();
        const PoDoFo::PdfObject parent = *page.GetKey("Parent");
        page.Clear();
        page.AddKey("Type", PoDoFo::PdfName("Page"));
        page.AddKey("Parent", parent);
        return page;
    }
    PoDoFo::PdfDictionary& FreshDictionary(unsigned number) {
        PoDoFo::PdfObject* const object = document_->Document().GetObjects().GetObject({number, 0});
        object->GetDictionary().Clear();
        return object->GetDictionary();
    }

private:
    static std::string Template() {
        std::string text = "%PDF-1.4\n%" + std::string(600, ' ') + "\n";
        std::string table = "0000000000 65535 f \n";
        int number = 0;
        for (const char* body : {"<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                                 "<</Type/Page/Parent 2 0 R>>", "<<>>", "<<>>", "[1 2]", "7"}) {
            char entry[24];
            std::snprintf(entry, sizeof entry, "%010zu 00000 n \n", text.size());
            table += entry;
            text += std::to_string(++number) + " 0 obj\n" + body + "\nendobj\n";
        }
        const std::string start = std::to_string(text.size());
        return text + "xref\n0 8\n" + table + "trailer\n<</Root 1 0 R/Size 8>>\nstartxref\n" + start +
               "\n%%EOF\n";
    }

    std::unique_ptr<VellumLib::CPDFDocument> document_;
};

/// A value of any type, references to nothing, to the page and to itself among them.
inline PoDoFo::PdfObject AnyValue(Choices& choices) {
    using namespace PoDoFo;
    switch (choices.Below(12)) {
        case 0:
            return PdfVariant();
        case 1:
            return PdfObject(true);
        case 2:
            return PdfObject(static_cast<pdf_int64>(choices.Byte()) - 100);
        case 3:
            return PdfObject(choices.Number(0.0));
        case 4:
            return PdfObject(PdfString("text"));
        case 5:
            return PdfObject(PdfName("Name"));
        case 6:
            return PdfObject(PdfDictionary());
        case 7:
            return PdfObject(PdfArray());
        case 8:
            return PdfObject(PdfArray(PdfObject(PdfDictionary())));
        case 9:
            return PdfObject(PdfReference(99, 0));
        default:
            return PdfObject(PdfReference(1 + static_cast<unsigned>(choices.Below(8)), 0));
    }
}

/// Puts the value under the key, unless the choice is another value or none.
inline void Put(PoDoFo::PdfDictionary& dictionary, const char* key, const PoDoFo::PdfObject& honest,
                Choices& choices) {
    if (!choices.Odd())
        dictionary.AddKey(key, honest);
    else if (choices.Odd())
        dictionary.AddKey(key, AnyValue(choices));
}

inline PoDoFo::PdfArray Reals(std::initializer_list<double> honest, Choices& choices) {
    PoDoFo::PdfArray array;
    const std::size_t count = choices.Count(honest.size());
    for (std::size_t i = 0; i < count; ++i) {
        const double number = choices.Number(honest.begin()[i % honest.size()]);
        array.push_back(choices.Odd() ? AnyValue(choices) : PoDoFo::PdfObject(number));
    }
    return array;
}

/// The page's boxes, as most pages have them.
inline void PutBoxes(PoDoFo::PdfDictionary& page, Choices& choices) {
    Put(page, "MediaBox", Reals({0.0, 0.0, 612.0, 792.0}, choices), choices);
    for (const char* key : {"CropBox", "BleedBox", "TrimBox", "ArtBox"})
        if (choices.Odd()) Put(page, key, Reals({10.0, 10.0, 600.0, 700.0}, choices), choices);
}

/// Whatever a reference holds can be counted with.
inline void CheckReference(const Tellurion::BGeoReference& reference) {
    if (!reference.HasMathTransform()) return;
    double x = 1.0;
    double y = 1.0;
    reference.MathTransform->ConvertSourceToTarget(x, y);
    if (!std::isfinite(x) || !std::isfinite(y)) std::abort();
}

/// The whole read of the page, with the arguments that the choices give.
inline void ReadPage(VellumLib::CPDFDocument& document, Choices& choices) {
    static constexpr long kSizes[] = {612, 1, 0, -5, 100000, 2147483647};
    const auto flags = static_cast<unsigned int>(choices.Below(4));
    const auto fit = static_cast<Tellurion::EMathTransformType>(choices.Below(8));
    const long width = choices.OneOf(kSizes);
    const long height = choices.OneOf(kSizes);
    Tellurion::BParamList params;
    params.SetInteger(Tellurion::BString(MapAnchor::BMapAnchor::kValPDFCropType),
                      5 - static_cast<int>(choices.Below(7)));
    Tellurion::BGeoReference reference;
    Survives([&] { MapAnchor::ReadGeoPDF(document, flags, reference, fit, width, height, &params); });
    Survives([&] { CheckReference(reference); });
}

}  // namespace fuzz
