#include "plugin/SensorFilePlugin.hpp"

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
    addFilter<FilterRecordSensorFile>();
    addFilter<FilterReplaySensorFile>();
}

SensorFilePlugin::~SensorFilePlugin() = default;

template <class FilterClass>
void SensorFilePlugin::addFilter() {
    using Factory = Quoril::Core::FilterFactory<FilterClass>;
    addFilterFactory(
        std::make_unique<Factory>(getName(), Quoril::Core::ComponentVersion(getVersion())));
}
