#include "batch/Index.h"
#include "batch/MissingRows.h"
#include "batch/NameSource.h"
#include "batch/Progress.h"
#include "batch/Row.h"
#include "batch/RowFile.h"
#include "batch/WorkerPool.h"
#include "commands/Commands.h"
#include "commands/Tally.h"
#include "read/ReadOptions.h"
#include "terminal/CommonOptions.h"

#include <MapAnchor/BReferenceFormats.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/Numbers.h>

#include <unistd.h>
#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <thread>

namespace Tool {

namespace {

using Tellurion::BFileUtilities;
using Tellurion::BString;

constexpr const char* kBatchDescription =
    "Show the georeferencing of many files, one row per file\n\n"
    "Names are read from stdin, or found in folders and the folders below them. Each file is\n"
    "read in a worker process with limits of time and memory: a file that crashes its worker or\n"
    "exceeds a limit fails only its own row. Rows are printed in the order of the inputs.\n\n"
    "Examples:\n"
    "  find . -name '*.tif' -print0 | mapanchor batch -0 > rows.jsonl\n"
    "  mapanchor batch --jobs 8 --resume rows.jsonl /archive\n"
    "  mapanchor batch --to geojsonseq --unordered /archive\n"
    "  mapanchor batch --index footprints.gpkg /archive > rows.jsonl\n"
    "  mapanchor batch --shard 2/5 /archive > rows-2.jsonl\n"
    "  mapanchor batch --missing names.txt rows-*.jsonl";

struct BatchOptions {
    CommonOptions common;
    ReadOptions read;
    std::vector<std::string> roots;
    bool nul_separated = false;
    bool every_file = false;
    bool all_maps = false;
    bool unordered = false;
    bool progress = false;
    bool overwrite = false;
    RowFormat format = RowFormat::JsonLines;
    std::string index;
    std::string resume;
    std::string missing;
    int jobs = 0;  ///< 0: one for each processor
    double seconds = 60.0;
    std::uint64_t megabytes = 2048;
    std::uint64_t shard = 1;
    std::uint64_t shards = 1;
};

/// The same shard for a name on every machine, whatever else is in the list.
std::uint64_t HashOf(const std::string& name) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char c : name)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    return hash;
}

std::set<std::string> KnownExtensions() {
    std::set<std::string> known;
    for (const auto& format : MapAnchor::BReferenceFormats::List())
        for (const auto& extensions : {format.GetReadExtensions(), format.GetTypedExtensions()})
            for (const BString& extension : extensions)
                known.insert(extension.StdStr());
    return known;
}

/// Which of a folder's files are rasters and which lie beside one.
class FolderInputs {
public:
    FolderInputs() {
        for (const auto& format : MapAnchor::BReferenceFormats::List()) {
            for (const BString& extension : format.GetReadExtensions())
                (format.IsSidecar() ? sidecars_ : rasters_).insert(extension.StdStr());
            for (const BString& extension : format.GetTypedExtensions())
                if (format.IsSidecar()) sidecars_.insert(extension.StdStr());
        }
    }
    /// A sidecar of a raster in the folder is no input of its own, and a picture is one only with
    /// a sidecar.
    void Keep(std::vector<std::string>& files) const {
        std::set<std::string> placed;
        std::set<std::string> rasters;
        for (const std::string& file : files) {
            const std::string extension = ExtensionOf(file);
            if (!sidecars_.contains(extension)) continue;
            placed.insert(StemOf(file));
            placed.insert(StemOf(StemOf(file)));  // of a name such as map.png.points
        }
        for (const std::string& file : files) {
            const std::string extension = ExtensionOf(file);
            if (rasters_.contains(extension)) rasters.insert(StemOf(file));
        }
        for (const std::string& file : files)
            if (IsPicture(file) && placed.contains(StemOf(file))) rasters.insert(StemOf(file));
        std::erase_if(files, [&](const std::string& file) {
            if (IsPicture(file)) return !rasters.contains(StemOf(file));
            return sidecars_.contains(ExtensionOf(file)) &&
                   (rasters.contains(StemOf(file)) || rasters.contains(StemOf(StemOf(file))));
        });
    }
    static bool IsPicture(const std::string& file) {
        static const std::set<std::string> kPictures = {".jpg", ".jpeg", ".png", ".bmp", ".gif"};
        return kPictures.contains(ExtensionOf(file));
    }

private:
    static std::string ExtensionOf(const std::string& file) {
        return BFileUtilities::GetExtension(BString(file)).ToLower().StdStr();
    }
    static std::string StemOf(const std::string& file) { return file.substr(0, file.rfind('.')); }

    std::set<std::string> sidecars_;
    std::set<std::string> rasters_;
};

class Batch {
public:
    explicit Batch(const BatchOptions& options);
    ExitStatus Run();

private:
    NameSource::Settings SourceSettings();
    void Deal();
    void Finish(JobOutcome outcome);
    void Write(const Row& row, std::string& text);
    void WriteInOrder();
    std::optional<std::size_t> Left() const;

    const BatchOptions& options_;
    const RowSettings settings_;
    RowFile out_;
    std::unique_ptr<Index> index_;
    NameSource source_;
    LogCollector log_;
    WorkerPool pool_;
    Progress progress_;
    Tally tally_;
    std::map<std::uint64_t, Row> waiting_;  ///< rows whose turn has not come
    std::uint64_t dealt_ = 0;
    std::uint64_t written_ = 0;
};

int JobsOf(const BatchOptions& options) {
    return options.jobs > 0 ? options.jobs
                            : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

Batch::Batch(const BatchOptions& options)
    : options_(options),
      settings_{options.format, !options.index.empty()},
      out_(options.resume.empty() ? RowFile() : RowFile(options.resume)),
      source_(SourceSettings()),
      pool_(JobsOf(options),
            [this](const std::string& name) {
                if (options_.all_maps) return Pack(MakeRowsOfMaps(name, options_.read, settings_, log_));
                ReadResult result = ReadFile(name, options_.read, log_);
                return Pack(MakeRow(result, settings_));
            },
            {options.seconds, options.megabytes * 1024 * 1024}, {out_.Descriptor()}),
      progress_(!options.common.quiet && (options.progress || isatty(STDERR_FILENO)), isatty(STDERR_FILENO)) {
    if (!options.index.empty()) index_ = MakeIndex(options.index, options.overwrite);
}

NameSource::Settings Batch::SourceSettings() {
    NameSource::Settings settings;
    settings.roots = options_.roots;
    settings.nul_separated = options_.nul_separated;
    settings.is_wanted = [this](const std::string& name) {
        return HashOf(name) % options_.shards == options_.shard - 1 && !out_.Has(name);
    };
    if (!options_.every_file)
        settings.keep_inputs = [inputs = FolderInputs()](std::vector<std::string>& files) {
            inputs.Keep(files);
        };
    settings.is_wanted_in_folder = [this, known = KnownExtensions()](const std::string& name) {
        return options_.every_file || FolderInputs::IsPicture(name) ||
               known.contains(BFileUtilities::GetExtension(BString(name)).ToLower().StdStr());
    };
    return settings;
}

/// One slow file holds up the rows behind it, but not without end the memory for them.
void Batch::Deal() {
    constexpr std::uint64_t kMostWaiting = 10'000;
    while (pool_.HasFree() && dealt_ - written_ < kMostWaiting) {
        auto name = source_.Next();
        if (!name) return;
        pool_.Give({dealt_++, std::move(*name)});
    }
}

/// Adds the row to a text of rows, which is printed at the latest when it is long.
void Batch::Write(const Row& row, std::string& text) {
    constexpr std::size_t kLong = std::size_t{1} << 18U;
    text += row.text;
    if (text.size() >= kLong) {
        out_.Print(text);
        text.clear();
    }
    // Of several maps a file has several features, each on its own line.
    for (std::size_t at = 0; index_ && at < row.feature.size();) {
        const std::size_t end = std::min(row.feature.find('\n', at), row.feature.size() - 1) + 1;
        index_->Add(row.feature.substr(at, end - at));
        at = end;
    }
    ++written_;
}

void Batch::WriteInOrder() {
    std::string text;
    while (!waiting_.empty() && (options_.unordered || waiting_.begin()->first == written_)) {
        Write(waiting_.begin()->second, text);
        waiting_.erase(waiting_.begin());
    }
    if (!text.empty()) out_.Print(text);
}

void Batch::Finish(JobOutcome outcome) {
    Row row = !outcome.loss ? Unpack(std::move(outcome.answer))
                            : MakeLostRow(outcome.job.name, *outcome.loss, outcome.loss_detail, settings_);
    tally_.Count(row.status);
    progress_.Count(row.status != ExitStatus::Done && row.status != ExitStatus::Warnings);
    waiting_.emplace(outcome.job.number, std::move(row));
}

std::optional<std::size_t> Batch::Left() const {
    if (!source_.IsListed()) return std::nullopt;
    return source_.Pending() + (dealt_ - written_ - waiting_.size());
}

ExitStatus Batch::Run() {
    constexpr std::chrono::milliseconds kTick(200);
    const std::string heading = HeadingOf(options_.format);
    if (!heading.empty()) out_.Print(heading);
    while (true) {
        source_.ReadAhead();
        Deal();
        if (pool_.IsIdle() && source_.IsAtEnd()) break;
        const bool can_wait =
            !pool_.HasFree() || source_.Pending() > 0 || source_.Descriptor() >= 0 || source_.IsListed();
        for (JobOutcome& outcome : pool_.Wait(source_.Descriptor(), can_wait ? kTick : kTick * 0))
            Finish(std::move(outcome));
        WriteInOrder();
        progress_.Tell(Left());
    }
    if (index_) index_->Close();
    progress_.Tell(Left(), true);
    if (index_ && !index_->LeftOutText().empty())
        options_.common.MakeConsole().Talk("batch: " + index_->LeftOutText());
    if (!source_.Fault().empty()) throw std::runtime_error(source_.Fault());
    return tally_.Status();
}

ExitStatus Run(const BatchOptions& options) {
    if (!options.missing.empty())
        return PrintMissing({options.missing, options.roots, options.nul_separated},
                            options.common.MakeConsole());
    return Batch(options).Run();
}

void ParseShard(const std::string& text, BatchOptions& options) {
    std::string_view rest = text;
    long shard = 0;
    long shards = 0;
    const bool is_whole = Tellurion::ScanLong(rest, shard) && rest.starts_with('/') &&
                          (rest.remove_prefix(1), Tellurion::ScanLong(rest, shards)) && rest.empty();
    if (!is_whole || shard < 1 || shard > shards)
        throw CLI::ValidationError("--shard", "wants i/n with i from 1 to n, such as 2/5");
    options.shard = static_cast<std::uint64_t>(shard);
    options.shards = static_cast<std::uint64_t>(shards);
}

void AddInputs(CLI::App& batch, BatchOptions& options) {
    batch.add_option("NAME", options.roots, "Files or folders; - reads names from stdin (default)");
    AddNulSeparated(batch, options.nul_separated);
    batch.add_flag("--all", options.every_file,
                   "Read every file of a folder, including sidecars of rasters and unknown extensions");
    batch
        .add_option_function<std::string>(
            "--shard", [&options](const std::string& text) { ParseShard(text, options); },
            "Process part i of n of the inputs, chosen by their names")
        ->type_name("i/n");
}

void AddOutputs(CLI::App& batch, BatchOptions& options) {
    const std::map<std::string, RowFormat> formats = {{"jsonl", RowFormat::JsonLines},
                                                      {"geojsonseq", RowFormat::GeoJsonSequence},
                                                      {"csv", RowFormat::Csv},
                                                      {"stac", RowFormat::Stac}};
    CLI::Option* const to = batch
                                .add_option("--to", options.format,
                                            "Format of the rows: jsonl, geojsonseq, csv (an apostrophe is "
                                            "put before a text like a formula), stac")
                                ->transform(CLI::CheckedTransformer(formats, CLI::ignore_case))
                                ->type_name("KIND");
    CLI::Option* const all_maps =
        batch.add_flag("--all-maps", options.all_maps, "Print a row for each map of all pages of a PDF");
    batch.add_flag("--unordered", options.unordered, "Print each row as soon as it is ready");
    CLI::Option* const index =
        batch
            .add_option("--index", options.index,
                        "Also write the footprints as a map layer: .gpkg or another format that GDAL writes")
            ->check(RefuseEmpty)
            ->type_name("FILE");
    batch.add_flag("--overwrite", options.overwrite, "Replace an existing index");
    batch
        .add_option(
            "--resume", options.resume,
            "Add rows to this file of jsonl, which an earlier run may have begun, and leave out the inputs "
            "that have one in it")
        ->check(RefuseEmpty)
        ->type_name("FILE")
        ->excludes(to)
        ->excludes(index)
        ->excludes(all_maps);
    batch
        .add_option("--missing", options.missing,
                    "Read no files, but a list of names (- for stdin) and, as NAME, files of rows in jsonl. "
                    "Print the names without a row; the exit status is 0 only with exactly one row for each")
        ->check(RefuseEmpty)
        ->type_name("LIST")
        ->excludes(to)
        ->excludes(index)
        ->excludes(all_maps)
        ->excludes("--resume")
        ->excludes("--shard");
    batch.add_flag("--progress", options.progress, "Show progress on stderr even if it is not a terminal");
}

void AddLimits(CLI::App& batch, BatchOptions& options) {
    constexpr int kMostJobs = 1024;
    batch.add_option("-j,--jobs", options.jobs, "Number of worker processes (default: one per processor)")
        ->check(CLI::Range(1, kMostJobs))
        ->type_name("N");
    AddNumber(
        batch, "--timeout", [&options](double value) { options.seconds = value; }, {0.001, 1e6},
        "Limit of seconds per file (default 60)")
        ->type_name("S");
    batch.add_option("--memory", options.megabytes, "Limit of memory per file in megabytes (default 2048)")
        ->check(CLI::Range(1, 1 << 20))
        ->type_name("MB");
}

}  // namespace

void AddBatchCommand(CLI::App& app, ExitStatus& status) {
    auto options = std::make_shared<BatchOptions>();
    CLI::App* batch = app.add_subcommand("batch", kBatchDescription);
    AddInputs(*batch, *options);
    AddOutputs(*batch, *options);
    AddLimits(*batch, *options);
    options->read.AddTo(*batch);
    options->common.AddTo(*batch);
    batch->callback([options, &status] {
        if (options->roots.empty() && !options->missing.empty())
            throw CLI::ValidationError("--missing", "wants the files of rows as well, such as rows*.jsonl");
        if (options->roots.empty()) options->roots.emplace_back("-");
        if (options->all_maps && options->format == RowFormat::Stac)
            throw CLI::ValidationError("--all-maps", "an item of STAC is one file; use another --to");
        status = Run(*options);
    });
}

}  // namespace Tool
