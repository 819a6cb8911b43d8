#pragma once

#include "sensorfile/SensorFileReader.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <string>
#include <string_view>
#include <vector>

#include <Poco/Exception.h>

namespace SensorFile {

/// A reader and a file whose samples a test gives as text or hexadecimal digits.
class ReaderTest : public testing::Test {
 protected:
    void open(const SensorFileConfig& config, bool binary, const std::string& samples) {
        reader.close();
        file.setContent(openingOf(config, binary) + samples);
        reader.open(file.path(), binary);
    }
    void openText(const std::vector<int>& typeCodes, const std::string& samples) {
        open(configOfTypes(typeCodes), false, samples);
    }
    void openBinary(const std::vector<int>& typeCodes, std::string_view hex) {
        open(configOfTypes(typeCodes), true, bytes(hex));
    }
    [[nodiscard]] std::string formatError() const {
        return "Format error in file : '" + file.path() + "'";
    }
    void expectFormatError(bool binary, const std::string& cause) {
        try {
            reader.open(file.path(), binary);
            ADD_FAILURE() << "opened";
        } catch (const Poco::DataException& e) {
            EXPECT_EQ(e.message(), formatError());
            ASSERT_NE(e.nested(), nullptr);
            EXPECT_EQ(e.nested()->message(), cause);
        }
        expectClosed();
    }
    void expectClosed() {
        EXPECT_FALSE(reader.isOpen());
        EXPECT_FALSE(reader.areHeadersValid());
        EXPECT_EQ(reader.valueCount(), 0U);
        EXPECT_EQ(reader.getConfig().getColumnCount(), 0U);
        double value = 0;
        EXPECT_FALSE(reader.read(&value, 1));
    }
    /// Rows until the end, by readRow() and again by read(), which must agree.
    std::vector<std::vector<double>> rows() {
        std::vector<std::vector<double>> result;
        std::vector<double> row(reader.getConfig().getColumnCount());
        while (reader.readRow(row))
            result.push_back(row);
        EXPECT_TRUE(reader.isEof());
        reader.rewind();
        for (const auto& expected : result) {
            EXPECT_TRUE(reader.read(row.data(), row.size()));
            EXPECT_FALSE(reader.isEof());
            EXPECT_THAT(row, testing::Pointwise(testing::NanSensitiveDoubleEq(), expected));
        }
        reader.read(row.data(), row.size());
        EXPECT_TRUE(reader.isEof());
        return result;
    }
    double nextDouble() {
        double value = 0;
        EXPECT_TRUE(reader.read(&value, 1));
        return value;
    }

    using Rows = std::vector<std::vector<double>>;
    TemporaryFile file;
    SensorFileReader reader;
};

}  // namespace SensorFile
