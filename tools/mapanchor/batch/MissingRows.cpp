#include "batch/MissingRows.h"

#include "batch/RowFile.h"
#include "read/InputNames.h"
#include "terminal/TargetFile.h"

#include <sys/stat.h>
#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <unordered_map>

namespace Tool {

namespace {

/// The rows that each name still needs; below zero for rows too many.
class Balance {
public:
    void Want(const std::string& name) {
        const auto [entry, is_new] = needed_.try_emplace(name, 0);
        if (is_new) order_.push_back(&entry->first);
        ++entry->second;
    }
    /// False for a name that is not in the list.
    bool Have(const std::string& name) {
        const auto found = needed_.find(name);
        if (found == needed_.end()) return false;
        --found->second;
        return true;
    }
    /// In the order of the list.
    template <class Visit>
    void ForEachWrong(Visit visit) const {
        for (const std::string* name : order_)
            if (const long needed = needed_.at(*name); needed != 0) visit(*name, needed);
    }

private:
    std::unordered_map<std::string, long> needed_;
    std::vector<const std::string*> order_;
};

std::ifstream OpenToRead(const std::string& file) {
    struct stat state {};
    errno = 0;
    if (stat(file.c_str(), &state) == 0 && S_ISDIR(state.st_mode)) errno = EISDIR;
    std::ifstream in;
    if (errno == 0) in.open(file, std::ios::binary);
    if (!in.is_open()) throw std::runtime_error("<" + file + "> cannot be read: " + ReasonOf(errno));
    return in;
}

/// Each piece up to the mark, and whether the mark was there.
template <class Visit>
void ForEachPiece(const std::string& file, char mark, Visit visit) {
    std::ifstream in = OpenToRead(file);
    for (std::string piece; std::getline(in, piece, mark);)
        visit(piece, !in.eof());
    if (in.bad()) throw std::runtime_error("<" + file + "> cannot be read: " + ReasonOf(errno));
}

void ReadList(const MissingSettings& settings, Balance& balance) {
    const auto want = [&balance](const std::string& name) { balance.Want(name); };
    if (settings.list == "-") return ForEachInput({"-"}, settings.nul_separated, want);
    ForEachPiece(settings.list, settings.nul_separated ? '\0' : '\n', [&](std::string& name, bool) {
        if (!settings.nul_separated && name.ends_with('\r')) name.pop_back();
        if (!name.empty()) balance.Want(name);
    });
}

/// Compares the rows of one file; false when something else than rows of the list is in it.
bool ReadRows(const std::string& file, Balance& balance, const Console& console) {
    std::size_t line = 0;
    std::size_t strangers = 0;
    bool is_whole = true;
    ForEachPiece(file, '\n', [&](const std::string& row, bool has_end) {
        ++line;
        const auto name = NameInRow(row);
        is_whole = has_end;
        if (!has_end) return;
        if (!name)
            throw std::runtime_error("<" + file + "> line " + std::to_string(line) +
                                     " is not a row of mapanchor batch in the format jsonl");
        if (balance.Have(*name) || ++strangers > 1) return;
        console.Complain("<" + file + "> line " + std::to_string(line) +
                         " is of a file that is not in the list: " + *name);
    });
    if (strangers > 1)
        console.Complain("<" + file + "> has " + std::to_string(strangers) +
                         " rows of files that are not in the list");
    if (!is_whole)
        console.Complain("<" + file +
                         "> ends in a row that was not written to its end, which does not count");
    return strangers == 0 && is_whole;
}

}  // namespace

ExitStatus PrintMissing(const MissingSettings& settings, const Console& console) {
    Balance balance;
    ReadList(settings, balance);
    bool is_complete = true;
    for (const std::string& file : settings.files)
        is_complete = ReadRows(file, balance, console) && is_complete;
    balance.ForEachWrong([&](const std::string& name, long needed) {
        is_complete = false;
        if (needed < 0) console.Complain(std::to_string(-needed) + " rows too many for " + name);
        for (long i = 0; i < needed; ++i)
            console.Print(name + (settings.nul_separated ? '\0' : '\n'));
    });
    return is_complete ? ExitStatus::Done : ExitStatus::Warnings;
}

}  // namespace Tool
