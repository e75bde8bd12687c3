#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>

namespace VellumLib {

/// Texts that were made of other texts. Bounded; safe to use from several threads.
class TextCache {
public:
    /// The text of `key`: kept, or what `make` gives.
    template <class Maker>
    std::string Get(const std::string& key, Maker make) {
        {
            const std::lock_guard lock(mutex_);
            if (const auto found = texts_.find(key); found != texts_.end()) return found->second;
        }
        std::string text = make();
        if (key.size() + text.size() > kLongest) return text;
        const std::lock_guard lock(mutex_);
        if (texts_.size() >= kMost) texts_.clear();
        texts_.emplace(key, text);
        return text;
    }

private:
    static constexpr std::size_t kMost = 64;
    static constexpr std::size_t kLongest = 16384;

    std::mutex mutex_;
    std::map<std::string, std::string> texts_;
};

}  // namespace VellumLib
