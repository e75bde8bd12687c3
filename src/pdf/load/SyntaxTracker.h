#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace VellumLib {

/// Follows PDF syntax byte by byte, beside a parser that takes the same bytes: how
/// deep arrays and dictionaries are nested, how many values there are, how much
/// copying they cost, and the last words outside of any container. It builds nothing.
class SyntaxTracker {
public:
    /// Starts again at a place where a token may start.
    void Restart();
    void Consume(unsigned char byte);

    int Depth() const { return depth_; }
    /// Words, names and strings so far.
    std::uint64_t Values() const { return values_; }
    /// The same, each as often as it is copied on its way out of its containers.
    std::uint64_t CopyCost() const { return copy_cost_; }
    /// The bytes that the parser holds while it builds them.
    std::uint64_t Memory() const { return memory_; }
    /// True once a value that began outside of any container has ended.
    bool ValueEnded() const { return value_ended_; }

    /// A word outside of containers, 0 the last one; empty where there was none.
    std::string_view Word(std::size_t back) const;
    void ForgetWords();

    /// While on, the text of each outermost dictionary is kept, up to a limit.
    void KeepDictionaries(bool on) { keep_ = on; }
    /// True once after an outermost dictionary has closed.
    bool TakeDictionaryClosed();
    const std::string& DictionaryText() const { return text_; }
    bool DictionaryCut() const { return cut_; }

private:
    enum class State : std::uint8_t { Between, Comment, Word, Less, Greater, String, Escape, Hex };
    struct ShortWord {
        std::array<char, 24> text{};
        std::uint8_t size = 0;
    };

    void TakeToken(unsigned char byte);
    void TakeString(unsigned char byte);
    void BeginWord(unsigned char byte);
    void ContinueWord(unsigned char byte);
    void EndValue() { value_ended_ = value_ended_ || depth_ == 0; }
    void CountValue(std::uint64_t memory);
    void OpenContainer(bool dictionary);
    void CloseContainer(bool dictionary);
    void Keep(unsigned char byte);

    State state_ = State::Between;
    bool value_ended_ = false;
    bool keep_ = false;
    bool cut_ = false;
    bool in_name_ = false;  ///< right behind the slash
    bool dictionary_closed_ = false;
    bool outermost_is_dictionary_ = false;
    int depth_ = 0;
    int balance_ = 0;
    std::uint32_t run_ = 0;
    std::uint64_t values_ = 0;
    std::uint64_t copy_cost_ = 0;
    std::uint64_t memory_ = 0;
    std::size_t newest_ = 0;
    std::array<ShortWord, 4> words_;
    std::string text_;
};

}  // namespace VellumLib
