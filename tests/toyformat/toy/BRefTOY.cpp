#include "toy/BRefTOY.h"

#include "common/files/OutputFile.h"
#include "common/policy/ReferenceFormat.h"
#include "common/storing/StoreTransform.h"

#include <fstream>

namespace MapAnchor {

namespace {

constexpr FailureTexts kTexts = {.source = "BRefTOY", .file_kind = "TOY"};

bool Read(const ReadCall& call) {
    std::ifstream in(call.file.StdStr());
    std::string word;
    AffineTerms t;
    return in >> word >> t.a >> t.b >> t.c >> t.d >> t.e >> t.f && word == "TOY" &&
           StoreAffine(call.reference, t, OnFailure::GoOn, kTexts);
}

bool Write(const SaveCall& call) {
    AffineTerms t;
    call.reference.MathTransform->GetAffineParameters(t.a, t.b, t.c, t.d, t.e, t.f);
    OutputFile out(call.file, kTexts);
    out.OpenOrThrow("TOY write could not open file");
    return out.Save([&] {
        out.Write(Tellurion::BString::Format("TOY %.17g %.17g %.17g %.17g %.17g %.17g\n", t.a, t.b, t.c, t.d,
                                             t.e, t.f));
        return true;
    });
}

}  // namespace

ReferenceFormat BRefTOY::Format() {
    return {.name = "TOY",
            .title = "Toy of a test",
            .type = static_cast<Tellurion::EReferenceType>(77),
            .typed_read = [](const ReadCall& call) { Read(call); },
            .typed_save = [](const SaveCall& call) { Write(call); },
            .named_read = Read,
            .named_save = Write,
            .read_extensions = {u".toy"},
            .save_extensions = {u".toy"},
            .sidecar = true,
            .rotation = true};
}

}  // namespace MapAnchor
