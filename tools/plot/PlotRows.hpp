#pragma once

#include "tools/common/Progress.hpp"
#include "tools/recording/Calibration.hpp"
#include "tools/recording/RowRange.hpp"
#include "tools/recording/RowReader.hpp"

#include <cstdint>
#include <optional>

namespace SensorFileTool {

/// The rows that a plot shows, which are read twice: once to learn how many there are and where
/// gaps lie, once for their values.
class PlotRows {
 public:
    /// @param recording  must outlive this
    /// @param progress  is shown both times
    /// @throws Poco::DataException if the rows are to be calibrated and cannot be
    PlotRows(Recording& recording, const RowRange& range, bool isCalibrated, Progress& progress);

    /// Of the rows as they are shown.
    [[nodiscard]] const SensorFile::SensorFileConfig& getConfig() const;

    /// Goes before the first row.
    void restart();
    /// Goes on to the next row; false when there is none.
    /// @throws Poco::FileException (or one derived) naming the path
    bool next();
    [[nodiscard]] const Row& row() const { return *row_; }
    /// Of the row, counted from 0 within the recording.
    [[nodiscard]] std::uint64_t getNumber() const { return number_; }
    /// Whether the recording was found to end before the range does.
    [[nodiscard]] bool isAtEnd() const { return isAtEnd_; }

 private:
    Recording& recording_;
    RowRange range_;
    Progress& progress_;
    std::optional<Calibration> calibration_;
    RowReader rows_;
    const Row* row_ = nullptr;
    std::uint64_t number_ = 0;
    std::uint64_t nextNumber_ = 0;
    std::uint64_t readBefore_ = 0;  ///< bytes, before the last restart
    bool isAtEnd_ = false;
};

}  // namespace SensorFileTool
