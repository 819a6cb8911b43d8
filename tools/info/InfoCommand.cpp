#include "tools/info/InfoCommand.hpp"

#include "sensorfile/Kivra2Calib.hpp"
#include "tools/common/ErrorText.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/common/InputOptions.hpp"
#include "tools/common/OutputCheck.hpp"
#include "tools/info/InfoJson.hpp"
#include "tools/info/InfoText.hpp"
#include "tools/recording/RecordingInfo.hpp"

#include <ostream>
#include <utility>

#include <CLI/App.hpp>
#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

int tellKivra2Calib(const InputFile& input, bool isJson, std::ostream& output) {
    SensorFile::Kivra2Calib calib;
    if (calib.load(input.getPath()) != SensorFile::Kivra2Calib::Extent::kWhole)
        throw Poco::DataException(input.getName() + ": the file is cut");
    output << (isJson ? kivra2CalibToJson(input.getName(), calib)
                      : kivra2CalibToText(input.getName(), calib));
    return kExitDone;
}

class InfoCommand : public Command {
 public:
    void define(CLI::App& app) override {
        app.add_option("FILE", paths_,
                       "Sensor files, or Kivra2 calibration files; - for the standard input")
            ->required();
        input_.define(app);
        input_.defineKind(app);
        app.add_flag("--json", isJson_, "Write a JSON object a line for each file");
    }

    int run(Console& console) override {
        int code = kExitDone;
        for (const std::string& path : paths_) {
            try {
                code = worseOf(code, tellFile(openInput(console, path), console.output));
            } catch (const Poco::Exception& error) {
                tellError(console, describeError(error));
                code = kExitFailed;
            }
            requireGood(console.output);
        }
        return code;
    }

 private:
    int tellFile(InputFile input, std::ostream& output) {
        if (input_.isKivra2Calib(input)) return tellKivra2Calib(input, isJson_, output);
        Recording recording(std::move(input), input_.getEncoding());
        const RowCount count = countRows(recording);
        const std::vector<MeasuredRate> rates = measureRates(recording.getConfig(), count);
        output << (isJson_ ? recordingToJson(recording, count, rates)
                           : recordingToText(recording, count, rates));
        return count.rest.size == 0 ? kExitDone : kExitProblems;
    }

    InputOptions input_;
    std::vector<std::string> paths_;
    bool isJson_ = false;
};

}  // namespace

std::unique_ptr<Command> makeInfoCommand() {
    return std::make_unique<InfoCommand>();
}

}  // namespace SensorFileTool
