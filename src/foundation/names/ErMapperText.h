#pragma once

namespace GeoCalc::DB {

/// The lines of ermapper.tsv.
extern const char kErMapperText[];

}  // namespace GeoCalc::DB
