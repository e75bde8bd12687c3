#pragma once

#include <Tellurion/BCoordSys.h>

#include <memory>
#include <string>

namespace Tool {

/// A coordinate system and what its text was taken for.
struct SystemAnswer {
    std::unique_ptr<Tellurion::BCoordSys> system;  ///< null when nothing is known by the text
    std::string understood_as;
};

/// The system that a person names, see BCoordSys::FromText. May throw a BException.
SystemAnswer SystemFromText(const std::string& text);

/// The system alone; null where nothing is known by the text, with a sentence in `failure`.
std::unique_ptr<Tellurion::BCoordSys> KnownSystem(const std::string& text, std::string& failure);

/// True when both are the same system. One without heights is compared with the horizontal
/// part of one with heights.
bool IsSameSystem(const Tellurion::BCoordSys& a, const Tellurion::BCoordSys& b);

/// The name of a system, or words for one that has none.
std::string TitleOf(const Tellurion::BCoordSys& system);

/// Name and EPSG code of a system, as a person reads it.
std::string NameOf(const Tellurion::BCoordSys& system);

}  // namespace Tool
