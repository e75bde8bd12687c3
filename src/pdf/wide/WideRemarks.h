#pragma once

#include <string>
#include <vector>

namespace VellumLib {

/// What a wide read has to say about a file that it read all the same.
struct WideRemark {
    std::string id;    ///< stable, for programs: "pdf-beyond-rules" or another of the kind
    std::string rule;  ///< of "pdf-beyond-rules": the rule that the file does not follow
    std::string text;  ///< a sentence for people
};

/// Where a value of a map is written.
struct WideOrigin {
    const char* value;  ///< "system", "points", "transform" or "name"
    std::string place;  ///< such as "object 12, /VP [0] /Measure /GPTS"
};

constexpr const char* kBeyondRules = "pdf-beyond-rules";

/// The remarks of one read, each rule once.
class WideRemarks {
public:
    /// The file does not follow `rule`, a short stable word; `text` names the key and what is there.
    void Beyond(const char* rule, const std::string& text) { Add(kBeyondRules, rule, text); }
    /// A doubt about what was read.
    void Doubt(const char* id, const std::string& text) { Add(id, "", text); }
    void Append(const WideRemarks& others) {
        for (const WideRemark& remark : others.list_)
            Add(remark.id, remark.rule, remark.text);
    }

    const std::vector<WideRemark>& List() const { return list_; }

private:
    void Add(const std::string& id, const std::string& rule, const std::string& text) {
        for (const WideRemark& known : list_)
            if (known.id == id && known.rule == rule) return;
        list_.push_back({id, rule, text});
    }

    std::vector<WideRemark> list_;
};

}  // namespace VellumLib
