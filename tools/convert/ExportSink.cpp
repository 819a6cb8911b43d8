#include "tools/convert/ExportSink.hpp"

#include "tools/convert/ConvertedConfig.hpp"
#include "tools/convert/ExportNames.hpp"
#include "tools/convert/Hdf5Sink.hpp"
#include "tools/convert/MatSink.hpp"
#include "tools/convert/NpySink.hpp"
#include "tools/convert/RowTextSink.hpp"
#include "tools/recording/SensorFileSink.hpp"

namespace SensorFileTool {

std::unique_ptr<RowSink> makeExportSink(const ExportPlan& plan) {
    switch (plan.format) {
        case OutputFormat::kCsv:
            return std::make_unique<RowTextSink>(plan.path, RowFormat::kCsv, plan.config);
        case OutputFormat::kTsv:
            return std::make_unique<RowTextSink>(plan.path, RowFormat::kTsv, plan.config);
        case OutputFormat::kJsonLines:
            // Of two members of one name, readers of JSON keep one.
            return std::make_unique<RowTextSink>(
                plan.path, RowFormat::kJsonLines,
                renamedConfig(plan.config, uniqueNames(columnNames(plan.config))));
        case OutputFormat::kNpy:
            return std::make_unique<NpySink>(plan.path, plan.config);
        case OutputFormat::kHdf5:
            return makeHdf5Sink(plan);
        case OutputFormat::kMat:
            return std::make_unique<MatSink>(plan.path, plan.config, plan.rowCount);
        default:
            return std::make_unique<SensorFileSink>(plan.path, plan.config,
                                                    plan.format == OutputFormat::kBinary);
    }
}

}  // namespace SensorFileTool
