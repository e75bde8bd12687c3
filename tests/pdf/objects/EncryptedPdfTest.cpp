// Encrypted files are refused as such wherever the file says so, before the parser
// comes to ciphers that it cannot deal with.

#include "objects/GuardedLoad.h"

#include <podofo/podofo.h>

#include <gtest/gtest.h>

#include "PdfBuilder.h"
#include "TempFolder.h"

#include <functional>

namespace VellumLib {
namespace {

using namespace PoDoFo;

struct Case {
    const char* name;
    EPdfError code;
    std::function<std::string()> make;
};

std::ostream& operator<<(std::ostream& out, const Case& test) {
    return out << test.name;
}

EPdfError CodeOf(const std::string& content) {
    const TempFolder folder;
    try {
        PdfMemDocument document;
        LoadGuarded(document, folder.Write("file.pdf", content));
        return ePdfError_ErrOk;
    } catch (const PdfError& error) {
        return error.GetError();
    }
}

class EncryptedPdf : public testing::TestWithParam<Case> {};

TEST_P(EncryptedPdf, EndsWithItsCode) {
    EXPECT_EQ(CodeOf(GetParam().make()), GetParam().code);
}

constexpr const char* kAes128 =
    "<</Filter/Standard/V 4/R 4/Length 128/P -4/CF<</StdCF<</CFM/AESV2/AuthEvent/DocOpen/Length 16>>>>"
    "/StmF/StdCF/StrF/StdCF/O<00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff>"
    "/U<00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff>>>";

std::string InTrailer(const std::string& keys) {
    PdfBuilder file;
    file.AddPage();
    file.Add(kAes128);
    return file.Finish(keys);
}

std::string InStream(const std::string& keys) {
    PdfBuilder file;
    file.AddPage();
    file.Add(kAes128);
    return file.FinishWithStream({}, keys);
}

// An update whose own trailer does not repeat the entry.
std::string InOlderTrailer() {
    PdfBuilder file;
    file.AddPage();
    file.Add(kAes128);
    const std::int64_t old = file.Position();
    file.Append(file.Table() + "trailer\n<</Root 1 0 R/Size 5/Encrypt 4 0 R/ID[<00><00>]>>\n");
    return file.Finish("/Prev " + std::to_string(old));
}

// A table for old readers, and a stream beside it that holds the entry.
std::string InHybridStream() {
    PdfBuilder file;
    file.AddPage();
    file.Add(kAes128);
    const std::int64_t stream = file.Position();
    file.AddStream("/Type/XRef/Root 1 0 R/Size 5/W[1 1 1]/Index[4 0]/Encrypt 4 0 R", "");
    return file.Finish("/XRefStm " + std::to_string(stream));
}

std::string InPage(const std::string& keys) {
    PdfBuilder file;
    file.AddPage(keys);
    return file.Finish();
}

const std::vector<Case> kCases = {
    {"cipher_that_the_parser_lacks", ePdfError_InvalidPassword,
     [] { return InTrailer("/Encrypt 4 0 R/ID[<00><00>]"); }},
    {"without_an_identifier", ePdfError_InvalidPassword, [] { return InTrailer("/Encrypt 4 0 R"); }},
    {"with_an_empty_identifier", ePdfError_InvalidPassword, [] { return InTrailer("/Encrypt 4 0 R/ID[]"); }},
    {"dictionary_in_place", ePdfError_InvalidPassword,
     [] { return InTrailer(std::string("/Encrypt") + kAes128 + "/ID[<00><00>]"); }},
    {"object_that_does_not_exist", ePdfError_InvalidPassword, [] { return InTrailer("/Encrypt 77 0 R"); }},
    {"name_in_escapes", ePdfError_InvalidPassword, [] { return InTrailer("/#45ncrypt 4 0 R"); }},
    {"behind_a_comment", ePdfError_InvalidPassword, [] { return InTrailer("%>>\n/Encrypt 4 0 R"); }},
    {"cross_reference_stream", ePdfError_InvalidPassword,
     [] { return InStream("/Encrypt 4 0 R/ID[<00><00>]"); }},
    {"older_trailer", ePdfError_InvalidPassword, InOlderTrailer},
    {"hybrid_stream", ePdfError_InvalidPassword, InHybridStream},
    {"entry_that_is_null", ePdfError_ErrOk, [] { return InTrailer("/Encrypt null"); }},
    {"word_in_a_string", ePdfError_ErrOk, [] { return InTrailer("/Note(/Encrypt 4 0 R)"); }},
    {"entry_of_a_deeper_dictionary", ePdfError_ErrOk, [] { return InTrailer("/A<</Encrypt 4 0 R>>"); }},
    {"entry_of_a_page", ePdfError_ErrOk, [] { return InPage("/Encrypt 1 0 R"); }},
};

INSTANTIATE_TEST_SUITE_P(All, EncryptedPdf, testing::ValuesIn(kCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace VellumLib
