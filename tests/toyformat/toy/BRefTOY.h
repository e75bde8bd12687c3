#pragma once

namespace MapAnchor {

struct ReferenceFormat;

/// A format that exists only in this test: the word TOY and the six terms of an affine, from the outer
/// corner of the top left pixel, in one line.
class BRefTOY {
public:
    static ReferenceFormat Format();
};

}  // namespace MapAnchor
