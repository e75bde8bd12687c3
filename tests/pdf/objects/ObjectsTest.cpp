// Values, the document, pages and the structure tree.

#include "PagePdf.h"
#include "TempFolder.h"

#include "objects/CCorruptedPDFException.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"
#include "objects/CPDFStructureElement.h"
#include "objects/CPDFStructureTreeRoot.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace VellumLib {
namespace {

/// What the parser's failure says; nothing where there was none.
struct Failure {
    PoDoFo::EPdfError code = PoDoFo::ePdfError_ErrOk;
    std::string text;
};
Failure FailureOf(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const PoDoFo::PdfError& error) {
        const auto& stack = error.GetCallstack();
        return {error.GetError(), stack.empty() ? std::string() : stack.back().GetInformation()};
    }
    return {};
}

QString PathOf(const std::string& path) {
    return QString::fromStdString(path);
}

TEST(PdfValues, ATypedGetterNamesKeyAndType) {
    CPDFDictionary dictionary;
    CPDFDictionary target;
    dictionary.AddInteger("One", 1);
    dictionary.AddReal("Half", 1.5);
    dictionary.AddName("Name", "Value");
    dictionary.AddReference("Nowhere", target);  // an own dictionary cannot be referred to
    struct Case {
        std::function<void()> get;
        PoDoFo::EPdfError code;
        const char* text;
    };
    const Case cases[] = {
        {[&] { dictionary.GetReal("One"); }, PoDoFo::ePdfError_InvalidDataType,
         "The key One is not of type Double."},
        {[&] { dictionary.GetNumber("Half"); }, PoDoFo::ePdfError_InvalidDataType,
         "The key Half is not of type Number."},
        {[&] { dictionary.GetString("Name"); }, PoDoFo::ePdfError_InvalidDataType,
         "The key Name is not of type String."},
        {[&] { dictionary.GetArray("Nowhere"); }, PoDoFo::ePdfError_InvalidKey,
         "The key Nowhere could not be found within the current dictionary."},
    };
    for (const Case& test : cases) {
        const Failure failure = FailureOf(test.get);
        EXPECT_EQ(failure.code, test.code);
        EXPECT_EQ(failure.text, test.text);
    }
    EXPECT_EQ(dictionary.GetNumber("One"), 1);
    EXPECT_EQ(dictionary.GetName("Name").ToQString(), "Value");
    EXPECT_TRUE(dictionary.RemoveKey("One"));
    EXPECT_FALSE(dictionary.RemoveKey("One"));
}

TEST(PdfValues, ArraysCheckTheirIndices) {
    CPDFArray array;
    array.InsertReal(0, 2.0);
    array.InsertInteger(0, 1);
    array.InsertName(array.GetSize(), "three");
    CPDFArray copy = array;  // the same container, freed once
    copy.RemoveAt(7);
    ASSERT_EQ(copy.GetSize(), 3);
    EXPECT_EQ(array[0].GetReal(), 1.0);
    EXPECT_EQ(array[2].GetName().ToQString(), "three");
    EXPECT_EQ(array[0].GetObjectNumber(), 0U);
    EXPECT_THROW(array[3], PoDoFo::PdfError);
    EXPECT_THROW(array[-1], PoDoFo::PdfError);
    EXPECT_THROW(array.InsertInteger(9, 1), PoDoFo::PdfError);
    EXPECT_THROW(array[2].GetReal(), PoDoFo::PdfError);
}

TEST(PdfValues, CopiesOfOwningWrappersShareTheirContainer) {
    CPDFDictionary copy;
    CPDFArray array;
    {
        CPDFDictionary own;
        own.AddBool("A", true);
        copy = own;
        own = CPDFDictionary();
        CPDFArray own_array;
        own_array.InsertBool(0, true);
        array = own_array;
        array.InsertArray(1, own_array);  // of itself, as it stands
        array.InsertDictionary(2, copy);
    }
    EXPECT_TRUE(copy.HasKey("A"));
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array[1].GetArray().GetSize(), 1);
    PoDoFo::PdfObject object(PoDoFo::PdfReference(7, 0), PoDoFo::PdfVariant(PoDoFo::PdfDictionary()));
    copy = object;
    EXPECT_FALSE(copy.HasKey("A"));
    EXPECT_EQ(copy.Object(), nullptr);  // made as one of its own
    CPDFDictionary view(object);
    view = CPDFDictionary();
    EXPECT_EQ(CPDFDictionary(view).Object(), nullptr);  // what is owned cannot be referred to
    EXPECT_THROW(array.InsertPreciseReal(0, std::numeric_limits<double>::infinity()), PoDoFo::PdfError);
}

TEST(PdfValues, StringsThatAreNotAscii) {
    CPDFDictionary dictionary;
    const QString text = QString::fromUtf8("Wei\u00DF");
    dictionary.AddUnicodeString("U", text);
    dictionary.AddString("P", "plain");
    EXPECT_EQ(CPDFObject(dictionary.GetKey("U")).GetString().ToStdString(), text.toStdString());
    EXPECT_EQ(dictionary.GetString("P").ToQString(), "plain");
    EXPECT_EQ(CPDFString(PoDoFo::PdfString()).ToQString(), "");
}

TEST(PdfDocument, RefusalsAndTheirWords) {
    const TempFolder folder;
    EXPECT_EQ(FailureOf([&] { CPDFDocument(PathOf(folder / "none.pdf")); }).code,
              PoDoFo::ePdfError_FileNotFound);
    const std::string file = folder.Write("rich.pdf", RichPdf(200, 100));
    CPDFDocument document(PathOf(file));
    const Failure failure = FailureOf([&] { document.GetDictionaryFromReference(8, 7); });
    EXPECT_EQ(failure.code, PoDoFo::ePdfError_InvalidDataType);
    EXPECT_EQ(failure.text, "The reference is not of type Dictionary.");
    EXPECT_THROW(document.GetPage(2), PoDoFo::PdfError);
    EXPECT_THROW(document.GetPage(-1), PoDoFo::PdfError);
    EXPECT_EQ(&document.GetPage(0), &document.GetPage(0));
    EXPECT_TRUE(document.HasMetadata());
    EXPECT_EQ(document.GetMetadata(), "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"/>");
    EXPECT_TRUE(document.GetModDate().isNull());
    const std::string long_text(2000, 'x');
    EXPECT_EQ(std::string(CCorruptedPDFException(PathOf(long_text)).what()), long_text.substr(0, 511));
}

TEST(PdfDocument, AMissingObjectIsToldApartFromOtherFaults) {
    const TempFolder folder;
    std::string text = RichPdf(200, 100);
    text.replace(text.find("/Root 1 0 R"), 11, "/Root 99 0 R");
    try {
        CPDFDocument(PathOf(folder.Write("rootless.pdf", text)));
        ADD_FAILURE();
    } catch (const CCorruptedPDFException& error) {
        const std::string start =
            "The PDF was partially corrupt and could not be read, the file will open without "
            "referencing\n\n Details : ";
        EXPECT_EQ(std::string(error.what()).substr(0, start.size()), start);
        EXPECT_GT(std::string(error.what()).size(), start.size());
    }
}

TEST(PdfDocument, ObjectsAreMadeFoundAndRemoved) {
    const TempFolder folder;
    CPDFDocument document(PathOf(folder.Write("rich.pdf", RichPdf(200, 100))));
    CPDFDictionary made = document.CreateDictionary();
    made.AddInteger("One", 1);
    const auto reference = made.Object()->Reference();
    EXPECT_EQ(document.GetDictionaryFromReference(reference).GetNumber("One"), 1);
    EXPECT_THROW(document.GetArrayFromReference(reference), PoDoFo::PdfError);
    CPDFDictionary holder;
    holder.AddReference("A", made);
    holder.AddReference("Array", document.CreateArray());  // cannot be referred to
    holder.AddInteger("Number", 5);
    EXPECT_EQ(document.RemoveReferencedObjects(holder), 1);
    EXPECT_EQ(document.RemoveReferencedObjects(holder), 0);
    EXPECT_FALSE(document.RemoveObject(reference));
    EXPECT_THROW(document.GetDictionaryFromReference(reference), PoDoFo::PdfError);
}

TEST(PdfDocument, WhatAPageWritesStandsInTheFile) {
    const TempFolder folder;
    const std::string out = folder / "out.pdf";
    {
        CPDFDocument document(PathOf(folder.Write("rich.pdf", RichPdf(200, 100))));
        CPDFPage copy(document.GetPage(0));
        copy.SetClearOnFlush(true);
        copy.WriteText(QString::fromLatin1("(\xE9) Tj\n"));  // a byte stays a byte
        copy.FlushTopCanvas();
        document.Write(PathOf(out));
    }
    CPDFDocument document(PathOf(out));
    EXPECT_EQ(document.GetPage(0).GetContentsLength(), 7U);
    EXPECT_EQ(document.GetPage(1).GetContentsLength(), 23U);
    EXPECT_TRUE(document.HasMetadata());
    EXPECT_TRUE(document.GetCatalog().HasKey("Outlines"));
    EXPECT_TRUE(document.GetPage(0).GetDictionary().HasKey("Annots"));
    EXPECT_FALSE(document.GetPage(0).GetDictionary().HasKey("VP"));
}

TEST(PdfPage, NamesOfItsProperties) {
    const TempFolder folder;
    const auto page = [&](const std::string& resources) {
        return folder.Write(
            "page.pdf", PagePdf("/Resources " + resources).Add("<< /Name (Rivers) /Title (No) >>").Text());
    };
    CPDFDocument document(PathOf(page("<< /Properties << /A 4 0 R /B << /Title (Roads) >> /C << >> >> >>")));
    CPDFPage& first = document.GetPage(0);
    for (const auto& [name, title] :
         {std::pair{"A", "Rivers"}, {"B", "Roads"}, {"C", ""}, {"D", ""}, {"", ""}})
        EXPECT_EQ(first.GetPropertyTitle(name), title) << name;
    CPDFDocument without(PathOf(page("<< >>")));
    EXPECT_THROW(without.GetPage(0).GetPropertyTitle("A"), PoDoFo::PdfError);
}

struct BoxCase {
    const char* keys;
    std::vector<double> media, crop, trim;
};

TEST(PdfPage, BoxesAreThoseOfThePageItself) {
    const BoxCase cases[] = {
        {"/MediaBox [0 0 100 50]", {0, 0, 100, 50}, {0, 0, 100, 50}, {0, 0, 100, 50}},
        {"/MediaBox [0 0 9 5] /CropBox [1 2 8 4.5]", {0, 0, 9, 5}, {1, 2, 8, 4.5}, {1, 2, 8, 4.5}},
        {"/TrimBox [1 2 3 4]", {}, {}, {1, 2, 3, 4}},  // the media box is only inherited
    };
    const TempFolder folder;
    for (const BoxCase& test : cases) {
        SCOPED_TRACE(test.keys);
        const std::string pdf = PagePdf(test.keys).Inherit("/MediaBox [0 0 9 9]").Text();
        CPDFDocument document(PathOf(folder.Write("boxes.pdf", pdf)));
        const CPDFPage& page = document.GetPage(0);
        EXPECT_EQ(page.GetMediaBox(), test.media);
        EXPECT_EQ(page.GetCropBox(), test.crop);
        EXPECT_EQ(page.GetTrimBox(), test.trim);
    }
}

TEST(PdfPage, AFlushWithNothingToWriteLeavesAnArrayOfContentsAlone) {
    const TempFolder folder;
    const std::string pdf =
        PagePdf("/MediaBox [0 0 9 9] /Contents [4 0 R] /Resources << >>").Add(PdfStreamObject("1 g")).Text();
    CPDFDocument document(PathOf(folder.Write("array.pdf", pdf)));
    EXPECT_NO_THROW(document.GetPage(0).FlushTopCanvas());
}

TEST(PdfStructure, ElementsHangOnTheTreeInOrder) {
    const TempFolder folder;
    const std::string file = folder.Write("rich.pdf", RichPdf(200, 100));
    CPDFDocument document(PathOf(file));
    CPDFStructureTreeRoot root(document);
    EXPECT_EQ(root.GetDocumentKids().GetSize(), 0);
    ASSERT_EQ(root.GetNums().GetSize(), 2);
    CPDFArray kids = root.GetDocumentKids();
    CPDFStructureElement first(document, root, kids, true, 0, "One");
    CPDFStructureElement second(document, root, kids, false, 1, "Two");
    first.AddUserProperty("n", "v");
    first.AddUserProperty("m", "w");
    ASSERT_EQ(kids.GetSize(), 2);
    ASSERT_EQ(root.GetParentTreeEntry().GetSize(), 2);
    EXPECT_EQ(kids[1].GetObjectNumber(), second.GetObjectNumber());
    EXPECT_EQ(root.GetParentTreeEntry()[0].GetObjectNumber(), first.GetObjectNumber());
    const CPDFArray properties = first.GetDictionary("A").GetArray("P");
    ASSERT_EQ(properties.GetSize(), 2);
    EXPECT_EQ(CPDFObject(properties[1].GetDictionary().GetKey("N")).GetString().ToStdString(), "m");
    EXPECT_EQ(second.GetNumber("K"), 1);
    EXPECT_EQ(document.GetCatalog().GetReference("StructTreeRoot"), root.Object()->Reference());
}

}  // namespace
}  // namespace VellumLib
