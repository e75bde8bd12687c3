#pragma once

#include <cstddef>
#include <iterator>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace Tellurion {

/// Values by text, those asked for last. Bounded; safe to use from several threads.
template <class Value, class Text = std::u16string>
class LruCache {
public:
    explicit LruCache(std::size_t most_entries) : most_entries_(most_entries) {}

    /// Longer texts are rare and not worth their memory: made each time.
    static constexpr std::size_t kLongestText = std::size_t{16} << 10;

    /// The value of `text`: kept, or what `make` gives. Two threads that ask for a new
    /// text at once may both make it; both get the one that is kept.
    template <class Maker>
    Value Get(const Text& text, Maker make) {
        if (text.size() > kLongestText) return make();
        if (Value kept; Find(text, kept)) return kept;
        return Keep(text, make());
    }

    using View = std::basic_string_view<typename Text::value_type>;

    /// False when nothing is kept for the text.
    bool Find(View text, Value& value) {
        const std::lock_guard lock(mutex_);
        const auto found = index_.find(text);
        if (found == index_.end()) return false;
        entries_.splice(entries_.begin(), entries_, found->second);
        value = found->second->value;
        return true;
    }

    /// Keeps a value unless one is kept already, which is returned then.
    Value Keep(const Text& text, Value value) {
        std::list<Entry> dropped;  // destroyed after the lock is released
        const std::lock_guard lock(mutex_);
        if (const auto found = index_.find(text); found != index_.end()) return found->second->value;
        entries_.push_front({text, std::move(value)});
        index_.emplace(entries_.front().text, entries_.begin());
        if (entries_.size() > most_entries_) {
            index_.erase(entries_.back().text);
            dropped.splice(dropped.begin(), entries_, std::prev(entries_.end()));
        }
        return entries_.front().value;
    }

    std::size_t Size() const {
        const std::lock_guard lock(mutex_);
        return entries_.size();
    }

private:
    struct Entry {
        Text text;
        Value value;
    };

    const std::size_t most_entries_;
    mutable std::mutex mutex_;
    std::list<Entry> entries_;  ///< the one used last in front
    std::unordered_map<View, typename std::list<Entry>::iterator> index_;
};

}  // namespace Tellurion
