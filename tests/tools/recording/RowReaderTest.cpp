#include "sensorfile/ColumnType.hpp"
#include "tests/tools/ToolFixture.hpp"
#include "tools/recording/RowReader.hpp"
#include "tools/recording/ValueText.hpp"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

using namespace SensorFile;
using Texts = std::vector<std::string>;

template <typename Number>
std::string bigEndian(Number value) {
    std::string text(sizeof value, '\0');
    std::memcpy(text.data(), &value, sizeof value);
    if constexpr (std::endian::native == std::endian::little)
        std::reverse(text.begin(), text.end());
    return text;
}

template <typename Number>
Number readBack(const std::string& text) {
    Number value{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    EXPECT_EQ(result.ptr, text.data() + text.size()) << text;
    return value;
}

class RowReaderTest : public ToolTest {
 protected:
    /// The text of every value up to the last whole row.
    static Texts allOf(Recording& recording) {
        Texts texts;
        RowReader rows(recording);
        while (rows.next())
            for (std::size_t i = 0; i < rows.row().size(); ++i)
                texts.push_back(valueText(rows.row(), i));
        EXPECT_FALSE(rows.next());
        return texts;
    }
    template <typename Number>
    std::string textOf(int type, Number value) {
        const Texts texts = allOf(open(configOfTypes({type}), true, bigEndian(value)));
        EXPECT_EQ(texts.size(), 1U);
        return texts.empty() ? "" : texts[0];
    }
    template <typename Number>
    bool isPlain(int type, Number value) {
        RowReader rows(open(configOfTypes({type}), true, bigEndian(value)));
        EXPECT_TRUE(rows.next());
        return isPlainNumber(rows.row(), 0);
    }
};

const Texts kEnds = {"255",
                     "127",
                     "65535",
                     "32767",
                     "4294967295",
                     "2147483647",
                     "0.1",
                     "0.1",
                     "1",
                     "255",
                     "127",
                     "65535",
                     "32767",
                     "18446744073709551615",
                     "9223372036854775807",
                     "33",
                     "33",
                     "0",
                     "-32768",
                     "0",
                     "-2147483648",
                     "-1.5",
                     "-1.5",
                     "0",
                     "0",
                     "-128",
                     "0",
                     "-32768",
                     "0",
                     "-9223372036854775808"};

TEST_F(RowReaderTest, AllTypesAreReadFromBinaryFiles) {
    EXPECT_EQ(allOf(openBinary(kAllTypeCodes,
                               "ff 7f ffff 7fff ffffffff 7fffffff 3dcccccd 3fb999999999999a 01 ff "
                               "7f ffff 7fff ffffffffffffffff 7fffffffffffffff"
                               "21 21 0000 8000 00000000 80000000 bfc00000 bff8000000000000 00 00 "
                               "80 0000 8000 0000000000000000 8000000000000000")),
              kEnds);
}

TEST_F(RowReaderTest, AllTypesAreReadFromTextFiles) {
    EXPECT_EQ(allOf(openText(kAllTypeCodes,
                             "\xff\t\x7f\t65535\t32767\t4294967295\t2147483647\t0.1\t0.1\t1\t255\t"
                             "127\t65535\t32767\t18446744073709551615\t9223372036854775807\t\n"
                             "!\t!\t0\t-32768\t0\t-2147483648\t-1.5\t-1.5\t0\t0\t"
                             "-128\t0\t-32768\t0\t-9223372036854775808\t\n")),
              kEnds);
}

TEST_F(RowReaderTest, LittleEndianFilesAreRead) {
    file.setContent(bytes("463224af 8912fe56 29bc7890 3480 0101 4a00000000000000 05170a111f04"
                          "0000000000006940 0100 080f 55") +
                    std::string(31, '\0') + bytes("463224af 8912fe56 29bc7890 3580 0001") +
                    bytes("ffffffffffffff7f 0100000000000000"));
    EXPECT_EQ(allOf(reopen()), (Texts{"9223372036854775807", "1"}));
}

// The number behind the last tab of a torn file may be the beginning of a longer one.
TEST_F(RowReaderTest, CutRowsAreNotDelivered) {
    const std::vector<int> types = {kUInt64, kInt16, kInt64};
    const std::string whole = "1\t2\t3\t\n";
    const std::string row = "4\t5\t6\t";
    for (std::size_t size = 0; size < row.size(); ++size)
        EXPECT_EQ(allOf(openText(types, whole + row.substr(0, size))), (Texts{"1", "2", "3"}))
            << size;
    EXPECT_EQ(allOf(openText(types, whole + row)).size(), 6U);
    const std::string bytes(18, '\1');
    for (std::size_t size = 0; size < 18; ++size)
        EXPECT_EQ(allOf(open(configOfTypes(types), true, bytes + bytes.substr(0, size))).size(), 3U)
            << size;
}

TEST_F(RowReaderTest, AFileCanBeReadAgainAfterItsEnd) {
    for (const std::string samples : {"1\t2\t\n", "1\t2\t\n3\t", "1\t2\t\n3", "1\t2\t\nx"}) {
        Recording& recording = openText({kUInt64, kInt16}, samples);
        EXPECT_EQ(allOf(recording), (Texts{"1", "2"}));
        recording.getReader().rewind();
        EXPECT_EQ(allOf(recording), (Texts{"1", "2"})) << samples;
    }
}

TEST_F(RowReaderTest, WithoutColumnsThereAreNoRows) {
    EXPECT_EQ(allOf(openBinary({}, "")), Texts{});
    EXPECT_EQ(allOf(openText({}, "")), Texts{});
}

TEST_F(RowReaderTest, NumbersThatAreNoneAreTold) {
    EXPECT_EQ(textOf(kDouble, std::nan("")), "nan");
    EXPECT_EQ(textOf(kDouble, -std::nan("")), "nan");
    EXPECT_EQ(textOf(kDouble, HUGE_VAL), "inf");
    EXPECT_EQ(textOf(kFloat, -HUGE_VALF), "-inf");
    EXPECT_EQ(textOf(kFloat, std::nanf("")), "nan");
    EXPECT_EQ(allOf(openText({kDouble, kFloat}, "nan\t-inf\t\n-nan\tinf\t\n")),
              (Texts{"nan", "-inf", "nan", "inf"}));
}

TEST_F(RowReaderTest, NumbersAreShort) {
    EXPECT_EQ(textOf(kDouble, 0.005), "0.005");
    EXPECT_EQ(textOf(kFloat, 0.005F), "0.005");
    EXPECT_EQ(textOf(kDouble, 200.0), "200");
    EXPECT_EQ(textOf(kDouble, -0.0), "-0");
    EXPECT_EQ(textOf(kDouble, 5e-324), "5e-324");
    EXPECT_EQ(textOf(kDouble, std::numeric_limits<double>::max()), "1.7976931348623157e+308");
}

RC_GTEST_FIXTURE_PROP(RowReaderTest, DoublesReadBackExactly, (std::uint64_t bits)) {
    const auto value = std::bit_cast<double>(bits);
    RC_PRE(std::isfinite(value));
    RC_ASSERT(std::bit_cast<std::uint64_t>(readBack<double>(textOf(kDouble, value))) == bits);
}

RC_GTEST_FIXTURE_PROP(RowReaderTest, FloatsReadBackExactly, (std::uint32_t bits)) {
    const auto value = std::bit_cast<float>(bits);
    RC_PRE(std::isfinite(value));
    RC_ASSERT(std::bit_cast<std::uint32_t>(readBack<float>(textOf(kFloat, value))) == bits);
}

RC_GTEST_FIXTURE_PROP(RowReaderTest, WideIntegersReadBackExactly, (std::uint64_t bits)) {
    const auto number = *rc::gen::element(bits, ~bits, bits << 32, bits * 0x9e3779b97f4a7c15U);
    RC_ASSERT(textOf(kUInt64, number) == std::to_string(number));
    const auto negative = std::bit_cast<std::int64_t>(number);
    RC_ASSERT(textOf(kInt64, negative) == std::to_string(negative));
}

TEST_F(RowReaderTest, WideIntegersAreSplitOverTheReadersBlocksExactly) {
    constexpr std::uint64_t kFirst = 0xfffffffffff00000U;
    std::string samples;
    for (std::uint64_t i = 0; i < 40000; ++i)
        samples += bigEndian(kFirst + i) + '\5';
    const Texts texts = allOf(open(configOfTypes({kUInt64, kUInt8}), true, samples));
    ASSERT_EQ(texts.size(), 80000U);
    for (std::uint64_t i = 0; i < 40000; ++i)
        ASSERT_EQ(texts[2 * i], std::to_string(kFirst + i));
}

TEST_F(RowReaderTest, IntegersBeyondTheExactOnesOfDoublesAreNotPlain) {
    constexpr std::int64_t kLimit = std::int64_t{1} << 53;
    for (const std::int64_t value : {std::int64_t{0}, kLimit - 1, kLimit}) {
        EXPECT_TRUE(isPlain(kInt64, value));
        EXPECT_TRUE(isPlain(kInt64, -value));
        EXPECT_TRUE(isPlain(kUInt64, value));
    }
    for (const std::int64_t value : {kLimit + 1, kLimit + 2, INT64_MAX}) {
        EXPECT_FALSE(isPlain(kInt64, value));
        EXPECT_FALSE(isPlain(kInt64, -value));
        EXPECT_FALSE(isPlain(kUInt64, value));
    }
    EXPECT_FALSE(isPlain(kInt64, INT64_MIN));
    EXPECT_FALSE(isPlain(kUInt64, UINT64_MAX));
}

TEST_F(RowReaderTest, NumbersThatAreNoneAreNotPlain) {
    EXPECT_TRUE(isPlain(kDouble, 1e300));
    EXPECT_TRUE(isPlain(kInt16, std::int16_t{-1}));
    for (const double value : {std::nan(""), HUGE_VAL, -HUGE_VAL})
        EXPECT_FALSE(isPlain(kDouble, value));
}

}  // namespace
}  // namespace SensorFileTool
