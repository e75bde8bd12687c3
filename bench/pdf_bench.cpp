// PDF files: opening them and reading the first page's boxes, and reading the reference
// of each dialect by type, against GDAL's driver on the same files. Small, large and
// very large files, and one of 100,000 objects. The counter is how far a process grows
// by doing it once.

#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include "BenchFiles.h"
#include "GeoPdfFiles.h"

#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace Tellurion;
using bench::Who;

std::string Stream(std::size_t size) {
    return "<< /Length " + std::to_string(size) + " >>\nstream\n" + std::string(size, '0') + "\nendstream";
}

std::string Plain(std::size_t stream_size) {
    return PagePdf("/MediaBox [0 0 612 792] /Contents 4 0 R /Resources << >>")
        .Add("<< /Length 10 >>\nstream\n0 0 9 9 re\nendstream")
        .Add(Stream(stream_size))
        .Text();
}

std::string ManyObjects() {
    PagePdf file("/MediaBox [0 0 612 792]");
    for (int i = 0; i < 100'000; ++i)
        file.Add("<< /Type /Annot /Rect [0 0 " + std::to_string(i) + " 1] /Contents (text) >>");
    return file.Text();
}

class Inputs {
public:
    Inputs() {
        constexpr std::size_t kMega = 1'000'000;
        GeoPdf::Viewport viewport;
        viewport.system = "/Type /PROJCS /WKT (" + GeoPdf::kUtm33 + ")";
        folder_.Write("small", Plain(1'000));
        folder_.Write("1MB", Plain(kMega));
        folder_.Write("100MB", Plain(100 * kMega));
        folder_.Write("100000_objects", ManyObjects());
        folder_.Write("measure", viewport.Text());
        folder_.Write("measure_100MB", viewport.Pdf().Add(Stream(100 * kMega)).Text());
        folder_.Write("lgidict", GeoPdf::LGIDict().Text());
    }
    std::string Path(const char* name) const { return folder_.Path(name); }

private:
    bench::Folder folder_;
};

std::string FileOf(const char* name) {
    static const Inputs inputs;
    return inputs.Path(name);
}

/// How far a fresh process grows by the work.
template <class Work>
double GrowthMiB(Work work) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) std::abort();
    const pid_t child = fork();
    if (child == 0) {
        const long before = bench::StatusKiB("VmHWM:");
        work();
        const double growth = static_cast<double>(bench::StatusKiB("VmHWM:") - before) / 1024.0;
        _exit(write(ends[1], &growth, sizeof growth) == sizeof growth ? 0 : 1);
    }
    double growth = 0.0;
    if (read(ends[0], &growth, sizeof growth) != sizeof growth) std::abort();
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    return growth;
}

template <class Work>
void Run(benchmark::State& state, Work work) {
    work();
    for (auto _ : state)
        work();
    state.counters["growth_MiB"] = GrowthMiB(work);
}

void PdfBoxes(benchmark::State& state, const char* name) {
    const QString path = QString::fromStdString(FileOf(name));
    Run(state, [&] {
        VellumLib::CPDFDocument document(path, VellumLib::EPDFExtent::FirstPage);
        benchmark::DoNotOptimize(document.GetPage(0).GetMediaBox());
        benchmark::DoNotOptimize(document.GetPage(0).GetCropBox());
    });
}

void PdfBoxesGdal(benchmark::State& state, const char* name) {
    const std::string path = FileOf(name);
    Run(state, [&] { benchmark::DoNotOptimize(bench::OpenRaster(path)->GetRasterXSize()); });
}

void PdfRead(benchmark::State& state, const char* name) {
    const BString path(FileOf(name));
    Run(state, [&] {
        BGeoReference reference;
        MapAnchor::BMapAnchor::Read(EReferenceType::GeoPDF, path, reference, 612, 792,
                                    EMathTransformType::Affine, 0, nullptr);
        if (!reference.HasMathTransform()) std::abort();
    });
}

void PdfReadGdal(benchmark::State& state, const char* name) {
    const std::string path = FileOf(name);
    Run(state, [&] {
        const bench::Dataset raster = bench::OpenRaster(path);
        std::array<double, 6> terms{};
        if (raster->GetGeoTransform(terms.data()) != CE_None || !raster->GetSpatialRef()) std::abort();
    });
}

[[maybe_unused]] const bool kAdded = [] {
    for (const auto& [operation, name] : {std::pair{"read the boxes of a PDF", "small"},
                                          {"read the boxes of a PDF of 1 MB", "1MB"},
                                          {"read the boxes of a PDF of 100 MB", "100MB"},
                                          {"read the boxes of a PDF of 100,000 objects", "100000_objects"}}) {
        bench::Add(Who::Ours, operation, PdfBoxes, name);
        bench::Add(Who::Gdal, operation, PdfBoxesGdal, name);
    }
    for (const auto& [operation, name] : {std::pair{"read PDF, measure", "measure"},
                                          {"read PDF of 100 MB, measure", "measure_100MB"},
                                          {"read PDF, LGIDict", "lgidict"}}) {
        bench::Add(Who::Ours, operation, PdfRead, name);
        bench::Add(Who::Gdal, operation, PdfReadGdal, name);
    }
    return true;
}();

}  // namespace
