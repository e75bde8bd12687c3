#pragma once

// Saves in child processes that meet a fault, and the judgement of the files they leave.

#include "LogCapture.h"
#include "References.h"
#include "Roads.h"
#include "SmallDisk.h"
#include "Subjects.h"
#include "TempFolder.h"

#include <MapAnchor/BGeoPDFPage.h>

#include <cpl_error.h>
#include <gdal.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <atomic>
#include <cstring>
#include <map>
#include <optional>
#include <regex>

extern "C" void FaultShimStart();

namespace {

namespace fs = std::filesystem;
using Tellurion::EReferenceType;
using Files = std::map<std::string, std::string>;

constexpr unsigned kPatience = 10;  // seconds
constexpr long kMaxNumber = 100000;

struct Fault {
    std::string call;
    std::string kind;
};

enum Column { kCalls, kFaults, kNew, kOld, kDestroyed, kCrashed, kMisreported };

struct Tally {
    std::string name;
    std::array<long, 7> counts = {};
    std::vector<std::string> notes = {};

    void Note(Column column, const std::string& text) {
        if (++counts[column] <= 3) notes.push_back(text);
    }
    void Print() const {
        std::printf("| %-32s |", name.c_str());
        for (const long count : counts)
            std::printf(" %11ld |", count);
        for (const std::string& note : notes)
            std::printf("\n    %s", note.c_str());
        std::puts("");
        std::fflush(stdout);
    }
};

/// Memory that a child writes to as well.
struct Shared {
    char text[1 << 16];
    std::atomic<long> reads;
    std::atomic<bool> stop;
};
Shared& shared = *static_cast<Shared*>(
    mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));

/// Runs `work` in a child; returns its wait status.
template <class Work>
int InChild(Work work) {
    shared.text[0] = '\0';
    const pid_t child = fork();
    if (child == 0) {
        alarm(kPatience);
        _exit(work());
    }
    int state = 0;
    if (child < 0 || waitpid(child, &state, 0) != child) throw std::runtime_error("cannot fork");
    return state;
}

/// What the caller hears, and after it the log, goes to the shared text.
int Save(EReferenceType type, const std::string& target) {
    static const Tellurion::BGeoReference reference = References::WithCorners(676000, 5242000);
    std::string message = "another exception";
    int status = 3;
    const LogCapture log;
    FaultShimStart();
    try {
        const Thrown thrown = Roads::Save(type, target, reference, Roads::kStrict);
        message = thrown.type + " | " + thrown.detail;
        status = thrown.type.empty() ? 0 : 2;
    } catch (const std::exception&) {
    }
    for (const std::string& line : log.lines)
        message += "\n" + line;
    std::strncpy(shared.text, message.c_str(), sizeof shared.text - 1);
    return status;
}

/// One subject in a folder of its own, and the saves of it.
class Trial {
public:
    Trial(const Subject& subject, Tally& tally)
        : subject_(subject), tally_(tally), under_(folder_ / "work/"), target_(under_ + subject.file) {
        fs::create_directories(under_ + "tmp");
        if (subject.other_disk) disk_.emplace(under_ + "tmp", "1m");
        subject.make(target_);
        before_ = Look();
        if (!IsUsable()) return;
        Run({"any", "EIO"}, 0);
        after_ = Look();
        Judge({"any", "nothing"}, 0);
    }
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;

    bool IsUsable() const {
        return (!IsTiff() || !before_.raster.pixels.empty()) && (!disk_ || disk_->IsMounted());
    }
    /// False when the save ended before its number came.
    bool Try(const Fault& fault, long number) {
        for (const std::string& folder : {under_, under_ + "tmp"})
            for (const auto& entry : fs::directory_iterator(folder))
                if (entry.path() != under_ + "tmp") fs::remove_all(entry.path());
        for (const auto& [name, content] : before_.files)
            std::ofstream(under_ + name, std::ios::binary) << content;
        if (!Run(fault, number)) return false;
        ++tally_.counts[kFaults];
        ++tally_.counts[Judge(fault, number) == 'n' ? kNew : kOld];
        return true;
    }

private:
    struct State {
        Files files;
        RasterState raster;
    };

    bool IsTiff() const { return subject_.type == EReferenceType::GeoTIFF; }
    bool IsPdf() const { return subject_.type == EReferenceType::GeoPDF; }

    /// Without the time of a save, which an ERS header states.
    static std::string Content(const fs::path& file) {
        static const std::regex time("LastUpdated.*");
        const std::string content = TempFolder::Slurp(file);
        return file.extension() == ".ers" ? std::regex_replace(content, time, "") : content;
    }
    State Look() const {
        State state;
        for (const auto& entry : fs::recursive_directory_iterator(under_))
            if (entry.is_regular_file())
                state.files[entry.path().string().substr(under_.size())] = Content(entry.path());
        if (!IsTiff() || state.files == before_.files) return {state.files, before_.raster};
        if (state.files == after_.files) return after_;
        InChild([this] {
            const RasterState raster = DescribeRaster(target_);
            std::strncpy(shared.text, (raster.pixels + "\n" + raster.reference).c_str(),
                         sizeof shared.text - 1);
            return 0;
        });
        const std::string text = shared.text;
        const auto cut = std::min(text.find('\n'), text.size());
        state.raster = {text.substr(0, cut), text.substr(cut)};
        return state;
    }

    [[noreturn]] void BecomeTool() const {
        const std::string shim = folder_ / "shim.so";  // LD_PRELOAD cannot express a blank
        const std::string source = folder_ / "source.tfw";
        fs::create_symlink(FAULT_SHIM, shim);
        Roads::Save(source, References::WithCorners(676000, 5242000));
        setenv("LD_PRELOAD", shim.c_str(), 1);
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        const char* const existing = subject_.is_new ? "--quiet" : "--overwrite";
        execl(MAPANCHOR_TOOL, MAPANCHOR_TOOL, "convert", existing, "--size", "200x100", source.c_str(),
              target_.c_str(), nullptr);
        _exit(126);
    }

    /// True when the fault struck.
    bool Run(const Fault& fault, long number) {
        const std::string log = folder_ / "struck";
        fs::remove(log);
        fs::remove(folder_ / "shim.so");
        state_ = InChild([&] {
            setenv("FAULT_CALL", fault.call.c_str(), 1);
            setenv("FAULT_KIND", fault.kind.c_str(), 1);
            setenv("FAULT_NUMBER", std::to_string(number).c_str(), 1);
            setenv("FAULT_UNDER", under_.c_str(), 1);
            setenv("FAULT_LOG", log.c_str(), 1);
            setenv("TMPDIR", (under_ + "tmp").c_str(), 1);
            if (subject_.by_tool) BecomeTool();
            return Save(subject_.type, target_);
        });
        message_ = shared.text;
        struck_ = TempFolder::Slurp(log);
        if (WIFEXITED(state_) && WEXITSTATUS(state_) > 64) throw std::runtime_error("cannot inject faults");
        return !struck_.empty();
    }

    /// n for the new file, o for the old one, which a PDF can be under the name of a
    /// temporary file, else x.
    char Left() const {
        const State now = Look();
        if (now.files == before_.files) return 'o';
        if (IsTiff()) {
            if (now.raster.pixels != before_.raster.pixels) return 'x';
            if (now.raster.reference == after_.raster.reference) return 'n';
            return now.raster.reference == before_.raster.reference ? 'o' : 'x';
        }
        const auto content = [this](const Files& files, const std::string& name) {
            return files.contains(name) ? files.at(name) : "none";
        };
        if (IsPdf()) {
            const auto page = MapAnchor::BGeoPDFPage::Describe(Tellurion::BString(target_));
            if (page.Dialect == MapAnchor::BGeoPDFPage::EDialect::Measure && page.Fault.IsEmpty() &&
                content(now.files, subject_.file).ends_with("%%EOF\n"))
                return 'n';
            for (const auto& [name, bytes] : now.files)
                if (bytes == before_.files.at(subject_.file) && (name == subject_.file || IsNamed(name)))
                    return 'o';
            return 'x';
        }
        // A reference that its format refuses leaves what was written so far.
        const bool is_refused = message_.find("Couldn't generate a MIF clause") != std::string::npos;
        for (const Files* known : {&before_.files, &after_.files})
            for (const auto& [name, bytes] : *known)
                if (const std::string found = content(now.files, name);
                    found != content(before_.files, name) && found != content(after_.files, name))
                    return is_refused ? 'o' : 'x';
        return content(now.files, subject_.file) == after_.files.at(subject_.file) ? 'n' : 'o';
    }
    bool IsNamed(const std::string& name) const {
        return !subject_.by_tool &&
               (WIFSIGNALED(state_) || message_.find("<" + under_ + name + ">") != std::string::npos);
    }

    char Judge(const Fault& fault, long number) {
        const std::string message = message_;
        const char left = Left();
        const bool in_memory = fault.call == "malloc";
        const std::string what = subject_.name + ", " + fault.kind + " at " + fault.call + " " +
                                 std::to_string(number) + " (" + struck_ + ")";
        if (left == 'x') tally_.Note(kDestroyed, what + ": destroyed");
        if (WIFSIGNALED(state_)) {
            // GDAL and Qt have allocations that they do not check; the file outlives that.
            const int signal = WTERMSIG(state_);
            if (!in_memory && (signal != SIGKILL || fault.kind != "kill"))
                tally_.Note(kCrashed, what + ": signal " + std::to_string(signal));
            return left;
        }
        const int status = WEXITSTATUS(state_);
        const bool says_saved = status == 0 || (subject_.by_tool && status == 3);
        // Some failures of a PDF are a warning box only, or a line of the log.
        // What a save reports after it wrote leaves the new file: that its system could not
        // be read back, and anything that memory was lacking for.
        const bool may_be_new = in_memory || message.find("Unable to save Coordinate") != std::string::npos;
        const bool is_wrong = says_saved
                                  ? left == 'o' && (!IsPdf() || message.find('\n') == std::string::npos)
                                  : left == 'n' && !may_be_new;
        const bool is_vague =
            status == 3 || (fault.call == "write" && !IsPdf() && message.find(target_) == std::string::npos);
        if ((is_wrong && before_.files != after_.files) ||
            (is_vague && !says_saved && !subject_.by_tool && !in_memory))
            tally_.Note(kMisreported, what + ": left " + left + ", status " + std::to_string(status) + ", " +
                                          message.substr(0, message.find('\n')));
        return left;
    }

    const Subject& subject_;
    Tally& tally_;
    TempFolder folder_;
    std::optional<SmallDisk> disk_;
    std::string under_;
    std::string target_;
    State before_;
    State after_;
    int state_ = 0;        ///< of the last save: its wait status,
    std::string message_;  ///< what it reported,
    std::string struck_;   ///< and the kind of call that failed
};

}  // namespace
