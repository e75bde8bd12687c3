#pragma once

#include <Tellurion/BException.h>

#include <optional>
#include <string>

/// What an operation threw: the parts of a failure of the library's family.
struct Thrown {
    std::string type;  ///< empty when nothing was thrown
    std::string source;
    std::string detail;
};

template <class Operation>
Thrown WhatIsThrown(Operation operation) {
    try {
        operation();
    } catch (const Tellurion::BException& error) {
        return {error.GetTypeName(), error.GetSource().StdStr(), error.GetDetail().StdStr()};
    }
    return {};
}
