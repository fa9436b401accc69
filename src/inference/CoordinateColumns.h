// Which columns hold latitudes and longitudes as text, and the fields that they get.
#pragma once

#include <vector>

#include "host/DataCore/LatLongFormat.h"
#include "inference/ColumnState.h"
#include "reading/Record.h"
#include "schema/FieldList.h"

namespace TextFile {

// Tests one row: a column stays a candidate only while each of its texts holds both coordinates,
// or forms them together with the text of the next column.
void DetectCoordinates(const quenra::LatLongFormat& format, const Record& record,
                       ColumnStates& columns) noexcept;

// Whether there are columns of coordinates, by all rows tested.
bool HasCoordinateColumns(const ColumnStates& columns) noexcept;

// Puts the virtual coordinate fields behind the fields of the candidates: `fields` holds one
// field a column, and `columns` their states. Without candidates it is left alone.
//   one text:   Location, Location_X, Location_Y
//   two texts:  Lat, Lon, Lat_D, Lon_D
void InsertCoordinateFields(const ColumnStates& columns, FieldList& fields);

}  // namespace TextFile
