#include "filters/sensorfile/FilterCalibSensorFileReader.hpp"
#include "filters/sensorfile/FilterCalibSensorFileWriter.hpp"
#include "tests/support/FilterHarness.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <cmath>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using Support::FilterHarness;

namespace {

struct Record {
    std::string name;
    bool isInteger;
    Eigen::MatrixXd matrix;
};

// Finite doubles of all sizes; for integers also those with a fraction and out of range.
double arbitraryValue(bool isInteger) {
    if (isInteger) return *rc::gen::inRange<int>(-1'000'000, 1'000'000) * 4321.0625;
    const double mantissa = *rc::gen::inRange<int>(-1'000'000'000, 1'000'000'000) / 3.0;
    return std::ldexp(mantissa, *rc::gen::inRange(-900, 900));
}

Record arbitraryRecord(std::size_t number) {
    const bool isInteger = *rc::gen::arbitrary<bool>();
    const auto rows = *rc::gen::inRange<Eigen::Index>(1, 7);
    const auto columns = *rc::gen::inRange<Eigen::Index>(1, 7);
    return {
        "C" + std::to_string(number), isInteger,
        Eigen::MatrixXd::NullaryExpr(rows, columns, [&]() { return arbitraryValue(isInteger); })};
}

double expectedValue(const Record& record, double value, bool binary) {
    if (record.isInteger) return std::trunc(std::fmin(std::fmax(value, -2147483648.0), 2147483647));
    if (binary) return value;
    std::ostringstream text;  // text holds fifteen digits
    text << std::setprecision(15) << value;
    return std::stod(text.str());
}

}  // namespace

RC_GTEST_PROP(CalibCycleTest, WhatIsSavedIsLoaded, (bool binary)) {
    const auto count = *rc::gen::inRange<std::size_t>(0, 6);
    const Support::TemporaryFolder folder;
    FilterCalibSensorFileWriter saver("saver");
    FilterHarness save(saver);
    save.set("Binary", binary);
    save.set("File Name", folder.file("calib.sf"));
    save.set("Calib Pins Number", static_cast<int>(count));
    std::vector<Record> records;
    for (std::size_t i = 0; i < count; ++i) {
        const Record record = records.emplace_back(arbitraryRecord(i));
        const std::string number = std::to_string(i + 1);
        save.set("CalibColNames#" + number, record.name);
        save.choose("CalibColTypes#" + number, record.isInteger ? "INT32" : "DOUBLE");
        save.push("calibInput#" + number, record.matrix);
    }
    save.trigger("Save");

    FilterCalibSensorFileReader loader("loader");
    FilterHarness load(loader);
    load.set("Binary", binary);
    load.set("Load File", folder.file("calib.sf"));
    load.watch();
    load.trigger("Flush");
    RC_ASSERT(load.outputNames().size() == count);
    for (const Record& record : records) {
        const auto sent = load.pull(record.name);
        RC_ASSERT(sent.size() == 1U);
        RC_ASSERT(sent[0].value.rows() == record.matrix.rows());
        RC_ASSERT(sent[0].value.cols() == record.matrix.cols());
        for (Eigen::Index i = 0; i < record.matrix.size(); ++i)
            RC_ASSERT(sent[0].value(i) == expectedValue(record, record.matrix(i), binary));
    }
}
