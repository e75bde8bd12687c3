#include "RunTool.h"

#include "SchemaCheck.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sstream>

namespace {

using nlohmann::json;

void Redirect(const std::string& path, int flags, int to) {
    const int descriptor = open(path.c_str(), flags, 0600);
    if (descriptor < 0 || dup2(descriptor, to) < 0) _exit(125);
    close(descriptor);
}

[[noreturn]] void Become(const std::vector<std::string>& words, const ToolSetting& setting,
                         const std::string& in, const std::string& out, const std::string& err) {
    Redirect(in, O_RDONLY, STDIN_FILENO);
    Redirect(out, O_WRONLY | O_CREAT, STDOUT_FILENO);
    Redirect(err, O_WRONLY | O_CREAT, STDERR_FILENO);
    for (const auto& [name, value] : setting.environment)
        setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> arguments = {const_cast<char*>(setting.program.c_str())};
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execv(setting.program.c_str(), arguments.data());
    _exit(126);
}

/// The first place where `value` lacks an expected member or has another value; empty when there is none.
std::string Difference(const json& value, const json& expected, const std::string& at = {}) {
    if (expected.is_number() && value.is_number()) {
        const double wanted = expected.get<double>();
        if (std::abs(value.get<double>() - wanted) <= 1e-9 * std::max(1.0, std::abs(wanted))) return {};
    } else if (expected.is_object() || (expected.is_array() && value.size() == expected.size())) {
        for (const auto& [key, member] : expected.items()) {
            const json::json_pointer place("/" + key);
            const json found = value.contains(place) ? value[place] : json();
            if (auto difference = Difference(found, member, at + "/" + key); !difference.empty())
                return difference;
        }
        return {};
    }
    return value == expected ? "" : at + " is " + value.dump();
}

}  // namespace

ToolRun RunTool(const std::vector<std::string>& words, const ToolSetting& setting) {
    const TempFolder folder;
    const std::string in = folder.Write("in", setting.in);
    const std::string out = setting.out_path.empty() ? folder / "out" : setting.out_path;
    const std::string err = folder / "err";
    const pid_t child = fork();
    if (child == 0) Become(words, setting, in, out, err);
    int state = 0;
    if (child < 0 || waitpid(child, &state, 0) != child) return {};
    const int status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
    return {status, setting.out_path.empty() ? TempFolder::Slurp(out) : "", TempFolder::Slurp(err)};
}

std::vector<nlohmann::json> ToolRun::Objects() const {
    std::vector<nlohmann::json> objects;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        objects.push_back(nlohmann::json::parse(line));
        EXPECT_EQ(SchemaFault(objects.back()), "") << line;
    }
    return objects;
}

std::vector<std::string> Words(const std::string& line, const std::string& folder) {
    std::vector<std::string> words;
    std::istringstream text(line);
    for (std::string word; text >> word;) {
        std::replace(word.begin(), word.end(), '~', ' ');
        words.push_back(word.front() == '%' ? folder + word.substr(1) : word);
    }
    return words;
}

ToolRun ToolFolder::ExpectRun(const std::string& words, int status, const std::string& members,
                              const std::vector<std::string>& texts) const {
    SCOPED_TRACE(words);
    const ToolRun run = RunTool(Words(words, *this / ""));
    const std::string output = run.out + run.err;
    EXPECT_EQ(run.status, status) << output;
    for (const std::string& text : texts)
        EXPECT_NE(output.find(text), std::string::npos) << text << " in " << output;
    if (members.empty()) return run;
    std::string expected = members;
    for (std::size_t at = 0; (at = expected.find('%')) != std::string::npos;)
        expected.replace(at, 1, *this / "");
    json object = run.Objects().at(0);
    object.update(json(object["mapanchor"]));
    EXPECT_EQ(Difference(object, json::parse("{" + expected + "}")), "");
    return run;
}

void ToolFolder::ExpectFile(const std::string& name, const std::string& content) const {
    EXPECT_EQ(std::filesystem::exists(*this / name), !content.empty()) << name;
    EXPECT_EQ(Slurp(*this / name), content) << name;
}

std::string PrjOf(const std::string& code) {
    return RunTool({"crs", "--json", code}).Ours()["texts"]["prj"];
}
