#include "tools/plot/PlotAssets.hpp"

namespace SensorFileTool {

const PlotAssets* findPlotAssets() {
    return nullptr;
}

}  // namespace SensorFileTool
