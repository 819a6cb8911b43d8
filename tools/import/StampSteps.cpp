#include "tools/import/StampSteps.hpp"

#include <bit>
#include <cmath>
#include <string>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

/// Stamps are rounded, and so are the steps between them.
double roundDigits(double value) {
    const std::string text = fmt::format("{:.9g}", value);
    double rounded = value;
    return readDouble(text, {}, rounded) ? rounded : value;
}

}  // namespace

void StampSteps::add(std::string_view cell, const CsvNumberStyle& style) {
    Stamp stamp;
    const CsvNumber number = scanNumber(cell, style);
    stamp.isInteger = number.kind == CsvNumber::Kind::kInteger;
    stamp.bits = number.isNegative ? 0 - number.magnitude : number.magnitude;
    if (!readDouble(cell, style, stamp.value) || !std::isfinite(stamp.value)) return;
    if (last_) {
        const auto difference = std::bit_cast<std::int64_t>(stamp.bits - last_->bits);
        steps_.add(stamp.isInteger && last_->isInteger ? static_cast<double>(difference)
                                                       : stamp.value - last_->value);
    }
    last_ = stamp;
}

std::optional<double> StampSteps::measure(int typeCode, double usual) {
    if (steps_.isEmpty() || !(steps_.get() > 0.0)) return std::nullopt;
    SensorFile::SensorFileConfig config;
    config.addColumn(time_.name, typeCode);
    time_.index = 0;
    time_.guessUnit(steps_.get(), usual, Row(config));
    const double frequency = roundDigits(1.0 / (steps_.get() * time_.secondsPerUnit));
    if (!std::isfinite(frequency)) return std::nullopt;
    return frequency;
}

}  // namespace SensorFileTool
