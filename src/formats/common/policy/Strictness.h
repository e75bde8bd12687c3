#pragma once

namespace MapAnchor {

/// What becomes of a part of a reference that cannot be had.
enum class OnFailure {
    GoOn,   ///< it stays unset, the failure is logged
    Throw,  ///< the read or save ends in an exception
};

/// The host's flags of the read or save by type, bit by bit.
class Strictness {
public:
    explicit Strictness(unsigned int flags) : flags_(flags) {}
    OnFailure Transform() const { return Bit(0); }
    OnFailure CoordSys() const { return Bit(1); }

private:
    OnFailure Bit(unsigned int bit) const {
        return (flags_ >> bit) & 1U ? OnFailure::Throw : OnFailure::GoOn;
    }

    unsigned int flags_;
};

}  // namespace MapAnchor
