#include "tools/InfoCommand.hpp"

#include "sensorfile/Kivra2Calib.hpp"
#include "tools/ErrorText.hpp"
#include "tools/ExitCode.hpp"
#include "tools/FileKind.hpp"
#include "tools/InfoJson.hpp"
#include "tools/InfoText.hpp"
#include "tools/OutputCheck.hpp"
#include "tools/RecordingInfo.hpp"

#include <algorithm>
#include <exception>
#include <ostream>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

int tellKivra2Calib(const std::string& path, bool isJson, std::ostream& output) {
    SensorFile::Kivra2Calib calib;
    if (calib.load(path) != SensorFile::Kivra2Calib::Extent::kWhole)
        throw Poco::DataException(path + ": the file is cut");
    output << (isJson ? kivra2CalibToJson(path, calib) : kivra2CalibToText(path, calib));
    return kExitDone;
}

int tellFile(const std::string& path, const InfoOptions& options, std::ostream& output) {
    if (!options.encoding && detectKind(path) == FileKind::kKivra2Calib)
        return tellKivra2Calib(path, options.isJson, output);
    Recording recording(path, options.encoding);
    const RowCount count = countRows(recording);
    const std::vector<MeasuredRate> rates = measureRates(recording, count);
    output << (options.isJson ? recordingToJson(recording, count, rates)
                              : recordingToText(recording, count, rates));
    return count.rest.size == 0 ? kExitDone : kExitProblems;
}

// The worst of two results: failures before problems.
int worse(int one, int other) {
    if (one == kExitFailed || other == kExitFailed) return kExitFailed;
    return std::max(one, other);
}

}  // namespace

int info(const InfoOptions& options, std::ostream& output, std::ostream& errors) {
    int code = kExitDone;
    for (const std::string& path : options.paths) {
        try {
            code = worse(code, tellFile(path, options, output));
        } catch (const Poco::Exception& error) {
            errors << "sensorfile: " << describeError(error) << '\n';
            code = kExitFailed;
        }
        requireGood(output);
    }
    return code;
}

}  // namespace SensorFileTool
