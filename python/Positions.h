#pragma once

#include <pybind11/pybind11.h>

#include <functional>

/// Converts a position in place; false where it has no counterpart.
using Convert = std::function<bool(double& x, double& y)>;

/// Two numbers become a tuple of two, a ValueError where there is no counterpart. With arrays, or what
/// numpy makes arrays of, the tuple has two arrays of their common shape, NaN where there is none.
pybind11::tuple ConvertPositions(const pybind11::object& x, const pybind11::object& y,
                                 const Convert& convert);
