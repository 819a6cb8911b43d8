#include "tools/convert/Hdf5Sink.hpp"

#include <Poco/Exception.h>

namespace SensorFileTool {

std::unique_ptr<RowSink> makeHdf5Sink(const ExportPlan& /*plan*/) {
    throw Poco::NotImplementedException("this build of sensorfile has no HDF5");
}

}  // namespace SensorFileTool
