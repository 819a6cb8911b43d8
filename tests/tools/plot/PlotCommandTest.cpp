#include "tests/tools/ToolFixture.hpp"
#include "tools/plot/PlotCommand.hpp"

#include <sstream>

namespace SensorFileTool {
namespace {

TEST(PlotCommandTest, ProgramsWithoutUplotSayThatTheyCannotPlot) {
    std::istringstream input;
    std::ostringstream output;
    Console console{input, output, output};
    EXPECT_THROW_MESSAGE(makePlotCommand(nullptr)->run(console), Poco::NotImplementedException,
                         "this sensorfile was built without uPlot, so it cannot plot");
}

}  // namespace
}  // namespace SensorFileTool
