#pragma once

#include <Tellurion/BCoordSys.h>

#include <memory>
#include <string>

/// A coordinate system and what its text was taken for.
struct SystemAnswer {
    std::unique_ptr<Tellurion::BCoordSys> system;  ///< null when nothing is known by the text
    const char* understood_as = "names";
};

/// The system that a person names: an EPSG code, well-known text, a MapInfo CoordSys
/// clause, or the names of a projection and a datum. May throw a BException.
SystemAnswer SystemFromText(const std::string& text);

/// True when both place positions the same way; names do not count.
bool IsSameSystem(const Tellurion::BCoordSys& a, const Tellurion::BCoordSys& b);

/// The name of a system, or words for one that has none.
std::string TitleOf(const Tellurion::BCoordSys& system);

/// Name and EPSG code of a system, as a person reads it.
std::string NameOf(const Tellurion::BCoordSys& system);
