// Georeferencing a PDF in place, against PoDoFo's own load and save of the same file.
// The argument is the file's size in KiB; "peak" is how far the process grows meanwhile.

#include "BenchFiles.h"
#include "PlainPdf.h"
#include "References.h"

#include <malloc.h>

#include <podofo/podofo.h>

#include <cstdint>
#include <map>

namespace {

using namespace Tellurion;
using bench::Who;
using MapAnchor::BMapAnchor;
namespace fs = std::filesystem;

/// A page with streams of 64 KiB that no compression shortens.
std::string MakePdf(std::size_t kib) {
    constexpr std::size_t kStream = std::size_t{64} << 10;
    std::vector<std::string> objects = {
        "<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 720 360] /Contents 4 0 R >>",
        PdfStreamObject("1 0 0 rg 10 10 50 30 re f")};
    std::uint32_t state = 1;
    for (std::size_t written = 0; written + kStream <= kib << 10U; written += kStream) {
        std::string bytes(kStream, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>((state = state * 1664525U + 1013904223U) >> 24U);
        objects.push_back(PdfStreamObject(bytes, "/Filter /DCTDecode"));
    }
    return PlainPdf(objects);
}

const std::string& Source(std::int64_t kib) {
    static const bench::Folder folder;
    static std::map<std::int64_t, std::string> files;
    std::string& file = files[kib];
    if (file.empty())
        file = folder.Write(std::to_string(kib) + ".pdf", MakePdf(static_cast<std::size_t>(kib)));
    return file;
}

void Georeference(const std::string& file) {
    static const BGeoReference reference = [] {
        BGeoReference made = References::WithAffine(0.5, 0, 676000, 0, -0.5, 5242000);
        References::SetSystem(made, "32632");
        return made;
    }();
    BMapAnchor::Save(EReferenceType::GeoPDF, BString(file), reference, 720, 360, "", 0, nullptr);
}

void LoadAndSave(const std::string& file) {
    PoDoFo::PdfMemDocument document(file.c_str());
    document.Write((file + ".out").c_str());
}

/// How far the process grows while it works, in MiB. What it freed before is given back
/// first; what is made on first use, PROJ's pages of its database above all, is there.
template <class Work>
double PeakMiB(Work work) {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5;  // VmHWM starts again
    const long before = bench::StatusKiB("VmRSS:");
    work();
    return static_cast<double>(bench::StatusKiB("VmHWM:") - before) / 1024.0;
}

template <class Work>
void Run(benchmark::State& state, Work work) {
    const std::string source = Source(state.range(0));
    const std::string file = source + ".work.pdf";
    fs::copy_file(source, file, fs::copy_options::overwrite_existing);
    work(file);
    fs::copy_file(source, file, fs::copy_options::overwrite_existing);
    const double peak = PeakMiB([&] { work(file); });
    for (auto round : state) {
        state.PauseTiming();
        fs::copy_file(source, file, fs::copy_options::overwrite_existing);
        state.ResumeTiming();
        work(file);
    }
    state.counters["peak_MiB"] = peak;
}

void PdfGeoreference(benchmark::State& state) {
    Run(state, Georeference);
}

void PdfLoadAndSaveByPodofo(benchmark::State& state) {
    Run(state, LoadAndSave);
}

[[maybe_unused]] const bool kAdded = [] {
    for (const auto& [operation, kib] : {std::pair{"write PDF of 2 KB", 2},
                                         {"write PDF of 10 MB", 10 << 10},
                                         {"write PDF of 100 MB", 100 << 10}}) {
        bench::Add(Who::Ours, operation, PdfGeoreference)->Arg(kib);
        bench::Add(Who::PoDoFo, operation, PdfLoadAndSaveByPodofo)->Arg(kib);
    }
    return true;
}();

}  // namespace
