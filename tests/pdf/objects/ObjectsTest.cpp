// Values, the document, pages and the structure tree.

#include "PagePdf.h"
#include "TempFolder.h"

#include "objects/CCorruptedPDFException.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"
#include "objects/CPDFStructureElement.h"
#include "objects/CPDFStructureTreeRoot.h"

#include <gtest/gtest.h>

namespace VellumLib {
namespace {

using PoDoFo::PdfError;

/// The code of the parser's failure and its text; empty where there was none.
template <class Operation>
std::string FailureOf(Operation operation) {
    try {
        operation();
    } catch (const PdfError& error) {
        const auto& stack = error.GetCallstack();
        return PdfError::ErrorName(error.GetError()) + (": " + stack.back().GetInformation());
    }
    return {};
}

class Objects : public testing::Test {
protected:
    QString Write(const std::string& text) const {
        return QString::fromStdString(folder.Write("in.pdf", text));
    }

    const TempFolder folder;
    const QString rich = QString::fromStdString(folder.Write("rich.pdf", RichPdf(200, 100)));
};

TEST_F(Objects, ATypedGetterNamesKeyAndType) {
    CPDFDictionary dictionary;
    dictionary.AddInteger("One", 1);
    dictionary.AddReal("Half", 1.5);
    dictionary.AddName("Name", "Value");
    dictionary.AddReference("Nowhere", CPDFDictionary());  // an own dictionary cannot be referred to
    const std::string wrong_type = "ePdfError_InvalidDataType: The key ";
    EXPECT_EQ(FailureOf([&] { dictionary.GetReal("One"); }), wrong_type + "One is not of type Double.");
    EXPECT_EQ(FailureOf([&] { dictionary.GetNumber("Half"); }), wrong_type + "Half is not of type Number.");
    EXPECT_EQ(FailureOf([&] { dictionary.GetString("Name"); }), wrong_type + "Name is not of type String.");
    EXPECT_EQ(FailureOf([&] { dictionary.GetArray("Nowhere"); }),
              "ePdfError_InvalidKey: The key Nowhere could not be found within the current dictionary.");
    EXPECT_EQ(dictionary.GetNumber("One"), 1);
    EXPECT_EQ(dictionary.GetName("Name").ToQString(), "Value");
    EXPECT_TRUE(dictionary.RemoveKey("One"));
    EXPECT_FALSE(dictionary.RemoveKey("One"));
}

TEST_F(Objects, ArraysCheckTheirIndices) {
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
    EXPECT_THROW(array[3], PdfError);
    EXPECT_THROW(array[-1], PdfError);
    EXPECT_THROW(array.InsertInteger(9, 1), PdfError);
    EXPECT_THROW(array[2].GetReal(), PdfError);
    EXPECT_THROW(array.InsertPreciseReal(0, std::numeric_limits<double>::infinity()), PdfError);
}

TEST_F(Objects, CopiesOfOwningWrappersShareTheirContainer) {
    CPDFDictionary copy;
    CPDFArray array;
    {
        CPDFDictionary own;
        own.AddBool("A", true);
        copy = own;
        own = CPDFDictionary();
        array.InsertBool(0, true);
        CPDFArray own_array = array;
        array.InsertArray(1, own_array);  // of itself, as it is
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
}

TEST_F(Objects, StringsThatAreNotAscii) {
    CPDFDictionary dictionary;
    const QString text = QString::fromUtf8("Wei\u00DF");
    dictionary.AddUnicodeString("U", text);
    dictionary.AddString("P", "plain");
    EXPECT_EQ(CPDFObject(dictionary.GetKey("U")).GetString().ToStdString(), text.toStdString());
    EXPECT_EQ(dictionary.GetString("P").ToQString(), "plain");
    EXPECT_EQ(CPDFString(PoDoFo::PdfString()).ToQString(), "");
}

TEST_F(Objects, DocumentsRefuseWhatTheyLack) {
    CPDFDocument document(rich);
    EXPECT_EQ(FailureOf([&] { document.GetDictionaryFromReference(8, 7); }),
              "ePdfError_InvalidDataType: The reference is not of type Dictionary.");
    EXPECT_THROW(document.GetPage(2), PdfError);
    EXPECT_THROW(document.GetPage(-1), PdfError);
    EXPECT_EQ(&document.GetPage(0), &document.GetPage(0));
    EXPECT_EQ(document.GetMetadata(), "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"/>");
    EXPECT_TRUE(document.GetModDate().isNull());
    CPDFDocument dated(QString::fromStdString(
        folder.Write("dated.pdf", PlainPdf({"<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[]/Count 0>>",
                                            "<</ModDate(D:20010203040506Z)/CreationDate 7>>"},
                                           "/Info 3 0 R"))));
    EXPECT_EQ(dated.GetModDate(), "D:20010203040506Z");
    EXPECT_TRUE(dated.GetCreationDate().isNull());
    EXPECT_EQ(FailureOf([&] { dated.GetCatalog().AddBool("", true); }).substr(0, 19), "ePdfError_InvalidKe");
    // A missing object differs from other faults.
    std::string rootless = RichPdf(200, 100);
    rootless.replace(rootless.find("/Root 1 0 R"), 11, "/Root 99 0 R");
    std::string text;
    try {
        CPDFDocument{Write(rootless)};
    } catch (const CCorruptedPDFException& error) {
        text = error.what();
    }
    const std::string start =
        "The PDF was partially corrupt and could not be read, the file will open without "
        "referencing\n\n Details : ";
    EXPECT_EQ(text.substr(0, start.size()), start);
    EXPECT_GT(text.size(), start.size());
    const std::string long_text(2000, 'x');
    EXPECT_EQ(std::string(CCorruptedPDFException(QString(2000, 'x')).what()), long_text.substr(0, 511));
}

TEST_F(Objects, AreMadeFoundAndRemoved) {
    CPDFDocument document(rich);
    CPDFDictionary made = document.CreateDictionary();
    made.AddInteger("One", 1);
    const auto reference = made.Object()->Reference();
    EXPECT_EQ(document.GetDictionaryFromReference(reference).GetNumber("One"), 1);
    EXPECT_THROW(document.GetArrayFromReference(reference), PdfError);
    CPDFDictionary holder;
    holder.AddReference("A", made);
    holder.AddReference("Array", document.CreateArray());  // cannot be referred to
    holder.AddInteger("Number", 5);
    EXPECT_EQ(document.RemoveReferencedObjects(holder), 1);
    EXPECT_EQ(document.RemoveReferencedObjects(holder), 0);
    EXPECT_FALSE(document.RemoveObject(reference));
    EXPECT_THROW(document.GetDictionaryFromReference(reference), PdfError);
}

TEST_F(Objects, WhatAPageWritesIsInTheFile) {
    const QString out = QString::fromStdString(folder / "out.pdf");
    {
        CPDFDocument document(rich);
        CPDFPage copy(document.GetPage(0));
        copy.SetClearOnFlush(true);
        copy.WriteText(QString::fromLatin1("(\xE9) Tj\n"));  // a byte stays a byte
        copy.FlushTopCanvas();
        document.Write(out);
    }
    CPDFDocument document(out);
    EXPECT_EQ(document.GetPage(0).GetContentsLength(), 7U);
    EXPECT_EQ(document.GetPage(1).GetContentsLength(), 23U);
    EXPECT_TRUE(document.HasMetadata() && document.GetCatalog().HasKey("Outlines"));
    EXPECT_TRUE(document.GetPage(0).GetDictionary().HasKey("Annots"));
    EXPECT_FALSE(document.GetPage(0).GetDictionary().HasKey("VP"));
    // Without anything to write an array of contents stays as it is.
    CPDFDocument array(Write(PagePdf("/Contents [4 0 R]").Add(PdfStreamObject("1 g")).Text()));
    EXPECT_NO_THROW(array.GetPage(0).FlushTopCanvas());
}

TEST_F(Objects, PagesNameTheirProperties) {
    CPDFDocument document(
        Write(PagePdf("/Resources << /Properties << /A 4 0 R /B << /Title (Roads) >> /C << >> >> >>")
                  .Add("<< /Name (Rivers) /Title (No) >>")
                  .Text()));
    for (const auto& [name, title] :
         {std::pair{"A", "Rivers"}, {"B", "Roads"}, {"C", ""}, {"D", ""}, {"", ""}})
        EXPECT_EQ(document.GetPage(0).GetPropertyTitle(name), title) << name;
    EXPECT_THROW(CPDFDocument(rich).GetPage(0).GetPropertyTitle("A"), PdfError);
}

TEST_F(Objects, BoxesAreThoseOfThePageItself) {
    using Box = std::vector<double>;
    const struct {
        const char* keys;
        Box media, crop, trim;
    } cases[] = {
        {"/MediaBox [0 0 100 50]", {0, 0, 100, 50}, {0, 0, 100, 50}, {0, 0, 100, 50}},
        {"/MediaBox [0 0 9 5] /CropBox [1 2 8 4.5]", {0, 0, 9, 5}, {1, 2, 8, 4.5}, {1, 2, 8, 4.5}},
        {"/TrimBox [1 2 3 4]", {}, {}, {1, 2, 3, 4}},  // the media box is only inherited
    };
    for (const auto& test : cases) {
        CPDFDocument document(Write(PagePdf(test.keys).Inherit("/MediaBox [0 0 9 9]").Text()));
        const CPDFPage& page = document.GetPage(0);
        EXPECT_EQ(page.GetMediaBox(), test.media) << test.keys;
        EXPECT_EQ(page.GetCropBox(), test.crop) << test.keys;
        EXPECT_EQ(page.GetTrimBox(), test.trim) << test.keys;
    }
}

TEST_F(Objects, StructureElementsAreInTheTreeInOrder) {
    CPDFDocument document(rich);
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
