#pragma once

namespace Tellurion {

/// The lines of mapinfo-datums.tsv.
extern const char kMapInfoDatumsText[];

}  // namespace Tellurion
