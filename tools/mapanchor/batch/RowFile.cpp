#include "batch/RowFile.h"

#include "Console.h"
#include "JsonRenderer.h"

#include <filesystem>
#include <fstream>

namespace {

/// The name of the input that a row tells of; empty for what is no row.
std::string NameIn(const std::string& row) {
    const Json json = Json::parse(row, nullptr, false);
    return json.is_object() && json.contains("description") && json["description"].is_string()
               ? json["description"].get<std::string>()
               : std::string();
}

/// A row tells bytes that are no UTF-8 in other ones.
std::string AsInRow(const std::string& name) {
    const Json json = {{"description", name}};
    return NameIn(ToText(json, CommonOptions()));
}

}  // namespace

RowFile::RowFile(const std::string& file) : file_(file) {
    std::uintmax_t whole = 0;
    std::ifstream in(file, std::ios::binary);
    for (std::string row; std::getline(in, row);) {
        const std::string name = NameIn(row);
        if (in.eof()) break;  // it has no line end
        if (name.empty() && in.peek() == std::ifstream::traits_type::eof()) break;
        if (name.empty()) throw std::runtime_error("<" + file + "> is no file of rows, it stays as it is");
        names_.insert(name);
        whole += row.size() + 1;
    }
    in.close();
    if (std::filesystem::exists(file)) std::filesystem::resize_file(file, whole);
    stream_.reset(std::fopen(file.c_str(), "ab"));
    if (!stream_) throw std::runtime_error("<" + file + "> cannot be written");
}

bool RowFile::Has(const std::string& name) const {
    return !names_.empty() && names_.contains(AsInRow(name));
}

void RowFile::Print(std::string_view row) {
    std::FILE* const stream = stream_ ? stream_.get() : stdout;
    const bool written = std::fwrite(row.data(), 1, row.size(), stream) == row.size();
    if (!written || std::fflush(stream) != 0) throw OutputLost(file_ + " cannot be written");
}
