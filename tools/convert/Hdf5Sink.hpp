#pragma once

#include "tools/convert/ExportSink.hpp"
#include "tools/recording/RowSink.hpp"

#include <memory>

namespace SensorFileTool {

/// Makes an HDF5 file: a dataset a column, calibration records in the group "calibration", dates
/// and names as attributes.
/// @throws Poco::NotImplementedException if the program was built without HDF5
/// @throws Poco::WriteFileException naming the path
[[nodiscard]] std::unique_ptr<RowSink> makeHdf5Sink(const ExportPlan& plan);

}  // namespace SensorFileTool
