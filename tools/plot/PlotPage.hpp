#pragma once

#include "tools/plot/PlotAssets.hpp"
#include "tools/plot/PlotLevel.hpp"
#include "tools/plot/PlotPanels.hpp"
#include "tools/plot/PlotScan.hpp"
#include "tools/recording/Recording.hpp"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace SensorFileTool {

/// What a plot's page shows.
struct Plot {
    std::string title;
    std::string fileName;
    const SensorFile::SensorFileConfig* config = nullptr;  ///< of the rows as they are shown
    bool isCalibrated = false;
    PlotScan scan;
    std::vector<std::size_t> columns;  ///< of the levels
    std::vector<PlotPanel> panels;     ///< of those columns, by their indexes in the recording
    std::vector<PlotLevel> levels;     ///< from the coarsest to the finest
};

/// Writes a page that needs nothing but itself. In the HTML of the assets a line "@NAME@" is where
/// a part comes: UPLOT_STYLE, STYLE, RECORDING (JSON), UPLOT_SCRIPT, SCRIPT, UPLOT_LICENCE.
void writePlotPage(const Plot& plot, const PlotAssets& assets, std::ostream& output);

/// What the page is told, as an object that can stand within HTML: nothing in it ends a script.
/// Positions are told to a hundredth of the usual step, whole numbers exactly and all others with
/// at least seven digits and to a millionth of their column's range.
void writePlotJson(const Plot& plot, std::ostream& output);

}  // namespace SensorFileTool
