#pragma once

namespace VellumLib {

/// The words of the element by which an export states the coordinate system of a page.
struct StructureElementNames {
    static constexpr const char* kType = "Feature";
    static constexpr const char* kTitle = "CoordinateSystem";
    static constexpr const char* kOwner = "UserProperties";
    static constexpr const char* kProperty = "Coordinate System:";
};

}  // namespace VellumLib
