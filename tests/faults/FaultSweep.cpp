// Saves references while one system call or allocation fails, or the process is killed at
// it, one call after the other, and judges the file that is left:
//   fault_sweep quick           a few kinds of files, a sample of the calls, 100 saves under a reader
//   fault_sweep full [PART]     all kinds, or those with PART in their names, every call, 1,000 saves
//                               under a reader
//   fault_sweep corpus FOLDER   the TIFFs below a folder, whole and cut short, with a few faults each
// Prints a table, and up to three cases of each row. The exit status is 1 when a file was
// destroyed, a process crashed or hung, or a caller got a wrong answer.

#include "Trial.h"

namespace {

/// Every `stride`th call of a save, from `first` on.
Tally SweepOver(const Subject& subject, long first, long stride) {
    Tally tally = {subject.name};
    Trial trial(subject, tally);
    if (!trial.IsUsable()) return tally;
    for (const Fault& fault : {Fault{"any", "kill"},
                               {"any", "EIO"},
                               {"write", "ENOSPC"},
                               {"write", "short"},
                               {"read", "short"},
                               {"write", "disk-full"},
                               {"open", "EACCES"},
                               {"malloc", "ENOMEM"}}) {
        const bool in_memory = fault.call == "malloc";
        if (in_memory && subject.by_tool) continue;
        for (long number = first; number < kMaxNumber && trial.Try(fault, number);
             number += in_memory ? number / 2 + stride : stride)
            tally.counts[kCalls] = std::max(tally.counts[kCalls], in_memory ? 0 : number);
    }
    if (tally.counts[kNew] == 0) tally.Note(kMisreported, subject.name + ": never saved");
    return tally;
}

/// One program reads while another saves: the reader sees one of the two references.
Tally ReadWhileSaving(long saves) {
    Tally tally = {"reads during " + std::to_string(saves) + " saves"};
    const TempFolder folder;
    const std::string target = folder / "map.tif";
    AllSubjects().front().make(target);
    const auto save = [&target](long number) {
        static const Tellurion::BGeoReference references[] = {References::WithCorners(1, 2),
                                                              References::WithCorners(3, 4)};
        return Roads::Save(EReferenceType::GeoTIFF, target, references[number % 2], Roads::kStrict)
            .type.empty();
    };
    std::array<RasterState, 2> known;
    for (const std::size_t i : {0U, 1U}) {
        save(static_cast<long>(i));
        known[i] = DescribeRaster(target);
    }
    const pid_t reader = fork();
    if (reader == 0) {
        bool good = known[0].reference != known[1].reference;
        for (; good && !shared.stop; ++shared.reads) {
            const RasterState state = DescribeRaster(target);
            good = state.pixels == known[0].pixels &&
                   (state.reference == known[0].reference || state.reference == known[1].reference);
        }
        _exit(good ? 0 : 1);
    }
    for (long i = 0; i < saves || shared.reads == 0; ++i)
        ++tally.counts[save(i) ? kNew : kMisreported];
    shared.stop = true;
    int state = 0;
    waitpid(reader, &state, 0);
    tally.counts[kCalls] = shared.reads;
    if (state != 0) tally.Note(kDestroyed, "the reader saw neither reference, or no raster");
    return tally;
}

std::vector<Tally> SweepOverCorpus(const std::string& folder) {
    Tally whole = {"TIFFs, one failing read or write"};
    Tally killed = {"TIFFs, killed at each call"};
    Tally cut = {"TIFFs, cut short, no fault"};
    long count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string extension = entry.path().extension();
        if (!entry.is_regular_file() || (extension != ".tif" && extension != ".tiff")) continue;
        const auto part_of = [&entry](int percent) {
            return Subject{entry.path().filename().string() + " " + std::to_string(percent) + "%", "map.tif",
                           EReferenceType::GeoTIFF, [&entry, percent](const std::string& to) {
                               const std::string bytes = TempFolder::Slurp(entry.path());
                               std::ofstream(to, std::ios::binary)
                                   << bytes.substr(0, bytes.size() * static_cast<std::size_t>(percent) / 100);
                           }};
        };
        for (const int percent : {25, 50, 75, 90, 99})
            if (const Subject part = part_of(percent); Trial(part, cut).IsUsable()) ++cut.counts[kFaults];
        const Subject one = part_of(100);
        Trial trial(one, whole);
        if (!trial.IsUsable()) continue;
        trial.Try({"write", "ENOSPC"}, 1);
        trial.Try({"read", "EIO"}, 1);
        if (++count % 10 != 1) continue;
        Trial sample(one, killed);
        for (long number = 1; number < kMaxNumber && sample.Try({"any", "kill"}, number);)
            ++number;
    }
    return {whole, killed, cut};
}

std::vector<Tally> SweepOverKinds(bool quick, const std::string& part_of_name) {
    std::vector<Tally> tallies;
    const std::vector<Subject> all = AllSubjects();
    for (std::size_t i = 0; i < all.size(); ++i) {
        const bool is_tiff = all[i].name.starts_with("TIFF");
        if (all[i].name.find(part_of_name) == std::string::npos) continue;
        if (quick && ((is_tiff && i % 8 != 0) || all[i].name.starts_with("convert: text"))) continue;
        const long stride = !quick ? 1 : all[i].by_tool ? 23 : is_tiff ? 7 : 1;
        tallies.push_back(SweepOver(all[i], 1 + static_cast<long>(i) % stride, stride));
    }
    tallies.push_back(ReadWhileSaving(quick ? 100 : 1000));
    return tallies;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    const bool is_corpus = mode == "corpus" && argc == 3;
    if (!is_corpus && mode != "quick" && mode != "full") return 64;
    // In memory a sync costs nothing.
    if (fs::is_directory("/dev/shm")) setenv("TMPDIR", "/dev/shm", 1);
    GDALAllRegister();
    CPLSetErrorHandler(CPLQuietErrorHandler);
    // What a save loads, all children have loaded.
    for (const Subject& subject : AllSubjects()) {
        const TempFolder folder;
        subject.make(folder / subject.file);
        Save(subject.type, folder / subject.file);
    }
    std::puts(
        "| file | calls | faults | new | old | destroyed | crashed | misreported "
        "|\n|---|--:|--:|--:|--:|--:|--:|--:|");
    Tally sum = {"all"};
    for (const Tally& tally :
         is_corpus ? SweepOverCorpus(argv[2]) : SweepOverKinds(mode == "quick", argc > 2 ? argv[2] : "")) {
        tally.Print();
        for (std::size_t i = 0; i < sum.counts.size(); ++i)
            sum.counts[i] += tally.counts[i];
    }
    sum.Print();
    return sum.counts[kDestroyed] + sum.counts[kCrashed] + sum.counts[kMisreported] == 0 ? 0 : 1;
}
