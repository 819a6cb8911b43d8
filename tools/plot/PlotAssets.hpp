#pragma once

#include <string_view>

namespace SensorFileTool {

/// The files that a plot's page is made of, which are part of the program.
struct PlotAssets {
    std::string_view page;    ///< HTML with a place for each of the others: see PlotPage
    std::string_view style;   ///< CSS
    std::string_view script;  ///< JavaScript
    std::string_view uplotStyle;
    std::string_view uplotScript;
    std::string_view uplotLicence;
};

/// @return nullptr if the program was built without uPlot, which draws the panels
[[nodiscard]] const PlotAssets* findPlotAssets();

}  // namespace SensorFileTool
