#pragma once

/// A GDAL driver for what the drivers at hand do not do on demand. Its files begin with
/// "ODDRASTER" and then name, in any order, what goes wrong:
///   lists-none       states three control points and lists none
///   no-points        refuses control points
///   no-transform     refuses a geotransform
///   no-system        refuses a coordinate system
///   no-memory        reports at opening that memory ran out, and opens
///   no-close         fails when it is closed
/// Its one band takes a unit of heights and states none.
void RegisterOddDriver();
