#include "plugin/SensorFilePlugin.hpp"

#include "filters/kivra2/FilterKivra2CalibReader.hpp"
#include "filters/kivra2/FilterKivra2CalibWriter.hpp"
#include "filters/kivra2/FilterRecordKivra2Format.hpp"
#include "filters/kivra2/FilterReplayKivra2Format.hpp"
#include "filters/sensorfile/FilterCalibSensorFileReader.hpp"
#include "filters/sensorfile/FilterCalibSensorFileWriter.hpp"
#include "filters/sensorfile/FilterRecordSensorFile.hpp"
#include "filters/sensorfile/FilterReplaySensorFile.hpp"
#include "framework/FilterFactory.hpp"

#include <memory>

SensorFilePlugin::SensorFilePlugin() : DefaultPlugin(kName, kVersion) {
    metaData() = {
        .version = kVersion,
        .hostVersion = kHostVersion,
        .name = kName,
        .description = "This is the plugin that wraps SensorFile elements.",
        .platform = "win32",
        .buildDate = "Tue 05/23/2017",
    };
    // Hosts list the filters in this order.
    addFilter<FilterRecordKivra2Format>();
    addFilter<FilterRecordSensorFile>();
    addFilter<FilterReplayKivra2Format>();
    addFilter<FilterReplaySensorFile>();
    addFilter<FilterKivra2CalibReader>();
    addFilter<FilterKivra2CalibWriter>();
    addFilter<FilterCalibSensorFileReader>();
    addFilter<FilterCalibSensorFileWriter>();
}

SensorFilePlugin::~SensorFilePlugin() = default;

template <class FilterClass>
void SensorFilePlugin::addFilter() {
    using Factory = Quoril::Core::FilterFactory<FilterClass>;
    addFilterFactory(
        std::make_unique<Factory>(getName(), Quoril::Core::ComponentVersion(getVersion())));
}
