#pragma once

#include "filters/common/CalibOutputs.hpp"
#include "filters/sensorfile/OutputNaming.hpp"
#include "framework/Filter.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// The output pins of a replay: data pins, which carry columns, and calibration pins.
///
/// Pins belong to a filter. Make and remove them only while no processing call runs.
class ReplayOutputs {
 public:
    /// @param filter  owner of the pins; must outlive this object
    explicit ReplayOutputs(Quoril::Core::Filter& filter) : filter_(filter) {}

    void clear();

    /// One data pin (columnCount x 1) for each description, taking the file's columns in order,
    /// and one calibration pin for each of the file's records, filled.
    /// @throws Poco::DataException as Filters::calibMatrix
    void makeDetected(const SensorFile::SensorFileConfig& config,
                      const std::vector<OutputDescription>& outputs);

    /// One data pin (1 x 1) for each column name and one calibration pin, filled, for each record
    /// name, in the order of the lists; a name that stands there twice makes two pins.
    /// @throws Poco::DataException if the file lacks one of them; no pin is made then
    void makeNamed(const SensorFile::SensorFileConfig& config,
                   const std::vector<std::string>& columns, const std::vector<std::string>& calibs);

    /// The same pins as placeholders to be connected, before a file is loaded.
    void makeUnbound(const std::vector<std::string>& columns,
                     const std::vector<std::string>& calibs);

    /// Position of the first data pin of that name.
    [[nodiscard]] std::optional<std::size_t> findData(const std::string& name) const;

    /// Spreads a row (one value a column) over the data pins.
    void fill(std::span<const double> row);
    /// The first value that fill() gave to a data pin.
    [[nodiscard]] double firstValue(std::size_t dataPin) const;

    /// Sends what the pins hold, data and calibration apart. Time stamps in seconds.
    void sendData(double timeStamp);
    void sendCalibration(double timeStamp);

 private:
    struct DataPin {
        std::unique_ptr<Filters::MatrixOutputPin> pin;
        std::size_t firstColumn;
    };

    void addData(const std::string& name, std::size_t firstColumn, std::size_t columnCount);

    Quoril::Core::Filter& filter_;
    std::vector<DataPin> dataPins_;
    Filters::MatrixOutputPins calibPins_;
};
