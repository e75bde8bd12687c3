#pragma once

#include <Tellurion/BCoordSys.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BSharedPtr.h>
#include <Tellurion/BString.h>

#include <cstddef>
#include <ctime>

/// What several formats ask of time, text and the coordinate system database. None of
/// these throws of its own; safe to use from several threads.
namespace MapAnchor {

/// "Wed Jan 02 02:03:55 GMT 1980" and a line end, as ERS headers have it. `out` needs
/// room for 31 characters. False, with `out` untouched, for a null `out` and a time
/// that has no such text. A `limit` below the length without the zone cuts the text
/// there; one that only the zone outgrows does not, and that is meant.
bool FormatERSTimeStamp(const std::tm* time, char* out, int limit);

/// Compares at most `count` characters, letters of either case alike: 0 when equal,
/// else the difference of the first two that differ.
int CompareNoCase(const char* a, const char* b, std::size_t count);

/// The well-known text of the reference's system, as COMPD_CS when the system has a
/// vertical part or the reference a vertical unit. Empty for a system without a text.
Tellurion::BString BuildCompoundWKT(const Tellurion::BGeoReference& reference);

/// The system that a header of the ER Mapper family names. `units` 1 asks for metres
/// and 3 for US survey feet, whatever the name says; any other value for no change. A
/// datum that is not known leaves the system on its own. Empty for an unknown
/// projection. A combination that the database lacks is stored in it.
Tellurion::BSharedPtr<Tellurion::BCoordSys> FindERMapperCoordSys(const Tellurion::BString& projection,
                                                                 const Tellurion::BString& datum,
                                                                 const int& units);

/// The ER Mapper name of the system's projection or, unless it is projected, of its
/// datum. False without one.
bool GetERMapperProjectionName(Tellurion::BString& name,
                               const Tellurion::BSharedPtr<Tellurion::BCoordSys>& coordSys);

}  // namespace MapAnchor
