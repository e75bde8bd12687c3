#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

namespace Tellurion {

/// A counted pointer. The counter is atomic, so copies may live in different
/// threads; one BSharedPtr object is not for two threads at once. With the
/// ownership flag set the pointee is deleted with the last copy.
template <class T>
class BSharedPtr {
public:
    /// Empty, without a counter.
    BSharedPtr() noexcept = default;
    /// Takes `pointer`, which may be null, and allocates the counter.
    explicit BSharedPtr(T* pointer, bool owns = true) : pointer_(pointer), owns_(owns) {
        try {
            counter_ = new std::atomic<std::int32_t>(1);
        } catch (...) {
            if (owns) delete pointer;
            throw;
        }
    }
    /** Shares. */ BSharedPtr(const BSharedPtr& other) noexcept
        : pointer_(other.pointer_), counter_(other.counter_), owns_(other.owns_) {
        if (counter_) counter_->fetch_add(1, std::memory_order_relaxed);
    }
    /** Takes. */ BSharedPtr(BSharedPtr&& other) noexcept
        : pointer_(std::exchange(other.pointer_, nullptr)),
          counter_(std::exchange(other.counter_, nullptr)),
          owns_(std::exchange(other.owns_, false)) {}
    /** Lets go of what it had. */ BSharedPtr& operator=(BSharedPtr other) noexcept {
        std::swap(pointer_, other.pointer_);
        std::swap(counter_, other.counter_);
        std::swap(owns_, other.owns_);
        return *this;
    }
    ~BSharedPtr() {
        if (!counter_ || counter_->fetch_sub(1, std::memory_order_acq_rel) != 1) return;
        delete counter_;
        if (owns_) delete pointer_;
    }

    T* Get() const noexcept { return pointer_; }                             ///< null when empty
    T* operator->() const noexcept { return pointer_; }                      ///< not when empty
    T& operator*() const noexcept { return *pointer_; }                      ///< not when empty
    explicit operator bool() const noexcept { return pointer_ != nullptr; }  ///< not empty
    bool IsEmpty() const noexcept { return pointer_ == nullptr; }            ///< no pointee

private:
    T* pointer_ = nullptr;
    std::atomic<std::int32_t>* counter_ = nullptr;
    bool owns_ = false;
};

}  // namespace Tellurion
