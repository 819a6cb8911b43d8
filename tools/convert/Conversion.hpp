#pragma once

#include "tools/common/Console.hpp"
#include "tools/common/OutputFile.hpp"
#include "tools/convert/ChangeLog.hpp"
#include "tools/convert/ExportSink.hpp"
#include "tools/convert/OutputFormat.hpp"
#include "tools/convert/RowConversion.hpp"
#include "tools/recording/Calibration.hpp"
#include "tools/recording/Recording.hpp"
#include "tools/recording/RecordingInfo.hpp"
#include "tools/recording/RowRange.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace SensorFileTool {

/// What the user wants of a conversion.
struct ConversionRequest {
    OutputFormat format = OutputFormat::kBinary;
    std::string out;  ///< a path, or "-"
    RowRange rows;
    std::string columns;  ///< see chooseColumns()
    std::string types;    ///< see changeTypes()
    std::optional<int> precision;
    bool hasRows = false;  ///< not all of them
    bool isCalibrated = false;
    bool isLossless = false;
    bool isForced = false;
};

/// Makes a file of another format of a sensor file.
class Conversion {
 public:
    /// @param recording  stands before its first row; it and the others must outlive this
    /// @throws UsageException, Poco::DataException if the recording has not got what is wanted
    Conversion(Console& console, Recording& recording, const ConversionRequest& request);

    /// @return an ExitCode: kExitProblems if values changed or the recording ends within a row
    /// @throws Poco::Exception telling what went wrong; nothing is left behind then
    int run();

 private:
    void planRows();
    void requireRows() const;
    void countRows();
    void make(const std::string& path);
    void checkHeader(const std::string& path);
    void copyRows(RowSink& sink);
    int tellProblems();

    Console& console_;
    Recording& recording_;
    const ConversionRequest& request_;
    std::optional<Calibration> calibration_;
    std::vector<std::size_t> columns_;
    RowRange range_;
    ExportPlan plan_;
    ChangeLog changes_;
    std::optional<Rest> rest_;  ///< if the rows ended before the range did
};

}  // namespace SensorFileTool
