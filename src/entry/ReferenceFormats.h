#pragma once

#include "common/policy/ReferenceFormat.h"

#include <string_view>
#include <vector>

namespace MapAnchor {

/// Every kind of reference; dispatch goes by the first that matches.
const std::vector<ReferenceFormat>& ReferenceFormatTable();

/// The kinds that are tried on files whose extension says nothing, in that order.
const std::vector<const ReferenceFormat*>& ProbedFormats();

/// Extensions of rasters that carry no reference of their own.
bool IsPlainRasterExtension(std::u16string_view extension);

/// Null for a number that is no type, and for Reserved.
const ReferenceFormat* FindFormatByType(Tellurion::EReferenceType type);
/// The kind whose name that is to people, though only a read or a save by type takes it.
const ReferenceFormat* FindFormatByTypedName(const Tellurion::BString& file);
const ReferenceFormat* FindFormatToRead(std::u16string_view extension);
/// Reads by name; the kind whose reader answered, null when none did.
const ReferenceFormat* ReadByName(const ReferenceFormat& format, const ReadCall& call);
const ReferenceFormat* FindFormatToSave(std::u16string_view extension);

}  // namespace MapAnchor
