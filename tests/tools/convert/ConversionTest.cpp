#include "sensorfile/SensorFileWriter.hpp"
#include "tests/tools/ToolFixture.hpp"
#include "tools/common/ExitCode.hpp"
#include "tools/convert/Conversion.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <sstream>

#include <Poco/File.h>
#include <Poco/TemporaryFile.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

using namespace SensorFile;

class ConversionTest : public ToolTest {
 protected:
    /// The file that is made of a recording.
    std::string convert(Recording& recording, ConversionRequest request) {
        std::istringstream input;
        std::ostringstream output;
        Console console{input, output, errors};
        request.out = "-";
        code = Conversion(console, recording, request).run();
        return output.str();
    }
    std::string convert(Recording& recording, OutputFormat format) {
        ConversionRequest request;
        request.format = format;
        request.precision = 17;
        request.isLossless = true;
        return convert(recording, request);
    }

    std::ostringstream errors;
    int code = 0;
};

/// Values of a type that its text keeps: no blank characters, and doubles of few digits.
rc::Gen<std::string> bytesOf(int typeCode) {
    const auto fromBits = [](std::size_t size, std::uint64_t bits) {
        std::string text;
        for (std::size_t i = size; i-- > 0;)
            text += static_cast<char>(static_cast<unsigned char>(bits >> (8 * i)));
        return text;
    };
    const std::size_t size = columnTypeSize(typeCode);
    if (typeCode == kBool)
        return rc::gen::map(rc::gen::inRange(0, 2), [=](int v) { return fromBits(1, v != 0); });
    if (typeCode == kUChar || typeCode == kChar)
        return rc::gen::map(rc::gen::inRange(33, 256),
                            [=](int v) { return fromBits(1, static_cast<std::uint64_t>(v)); });
    if (typeCode == kDouble)
        return rc::gen::map(rc::gen::inRange(-1'000'000'000, 1'000'000'000), [=](int v) {
            return fromBits(8, std::bit_cast<std::uint64_t>(v / 1000.0));
        });
    if (typeCode == kFloat)
        return rc::gen::map(rc::gen::inRange(-1'000'000, 1'000'000), [=](int v) {
            return fromBits(4, std::bit_cast<std::uint32_t>(static_cast<float>(v) / 64));
        });
    return rc::gen::map(rc::gen::arbitrary<std::uint64_t>(),
                        [=](std::uint64_t bits) { return fromBits(size, bits); });
}

RC_GTEST_FIXTURE_PROP(ConversionTest, BinaryToTextAndBackGivesTheSameBytes, ()) {
    const auto types =
        *rc::gen::nonEmpty(rc::gen::container<std::vector<int>>(rc::gen::elementOf(kAllTypeCodes)));
    const int rowCount = *rc::gen::inRange(0, 20);
    std::string samples;
    for (int row = 0; row < rowCount; ++row)
        for (const int type : types)
            samples += *bytesOf(type);
    auto config = configOfTypes(types);
    config.setCalibTime(config.getCreationTime());
    const std::string binary = openingOf(config, true) + samples;
    const std::string text = convert(open(config, true, samples), OutputFormat::kText);
    RC_ASSERT(code == kExitDone);
    file.setContent(text);
    RC_ASSERT(hexOf(convert(reopen(), OutputFormat::kBinary)) == hexOf(binary));
    RC_ASSERT(code == kExitDone);
    RC_ASSERT(errors.str().empty());
}

TEST_F(ConversionTest, AChangeIsCountedForEveryValueAndTheFirstIsTold) {
    ConversionRequest request;
    request.format = OutputFormat::kText;
    convert(openBinary({kDouble, kInt16},
                       "3fb999999999999a 0001 3fd5555555555555 0002"
                       "3ddb7cdfd9d7bdbb 0003"),
            request);
    EXPECT_EQ(code, kExitProblems);
    EXPECT_EQ(errors.str(), "sensorfile: " + file.path() +
                                ": 2 values changed, first in row 1, column a: "
                                "0.3333333333333333 became 0.33333 (--precision sets the "
                                "decimals of text)\n");
}

}  // namespace
}  // namespace SensorFileTool
