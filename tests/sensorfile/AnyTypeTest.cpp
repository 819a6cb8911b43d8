#include "sensorfile/AnyType.hpp"
#include "sensorfile/Column.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <cmath>
#include <cstring>
#include <limits>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

using Poco::Dynamic::Var;

TEST(AnyTypeTest, TakesAValueOfItsOwnTypeAsItIs) {
    const std::int64_t exact = (std::int64_t{1} << 53) + 1;
    EXPECT_EQ(AnyType<Poco::Int64>().convert(Var(Poco::Int64{exact})).extract<Poco::Int64>(),
              exact);
    EXPECT_EQ(AnyType<double>().convert(Var(0.1)).extract<double>(), 0.1);
    EXPECT_EQ(AnyType<bool>().convert(Var(true)).extract<bool>(), true);
}

TEST(AnyTypeTest, ConvertsOtherTypes) {
    EXPECT_EQ(AnyType<short>().convert(Var(12.9)).extract<short>(), 12);
    EXPECT_EQ(AnyType<short>().convert(Var(-12.9f)).extract<short>(), -12);
    EXPECT_EQ(AnyType<unsigned char>().convert(Var(65)).extract<unsigned char>(), 65);
    EXPECT_EQ(AnyType<float>().convert(Var(0.1)).extract<float>(), 0.1f);
    EXPECT_EQ(AnyType<double>().convert(Var(Poco::UInt64{7})).extract<double>(), 7.0);
    EXPECT_EQ(AnyType<int>().convert(Var(true)).extract<int>(), 1);
    EXPECT_EQ(AnyType<int>().convert(Var(std::string("42"))).extract<int>(), 42);
    EXPECT_EQ(AnyType<double>().convert(Var(std::string("4.5"))).extract<double>(), 4.5);
}

TEST(AnyTypeTest, TextHasTheGivenPrecisionAndNoPointForIntegers) {
    EXPECT_EQ(AnyType<double>().toText(Var(1.5), 5), "1.50000");
    EXPECT_EQ(AnyType<double>().toText(Var(2), 0), "2");
    EXPECT_EQ(AnyType<float>().toText(Var(0.1), 3), "0.100");
    EXPECT_EQ(AnyType<int>().toText(Var(-7.9), 5), "-7");
    EXPECT_EQ(AnyType<Poco::UInt64>().toText(Var(std::numeric_limits<Poco::UInt64>::max()), 5),
              "18446744073709551615");
    EXPECT_EQ(AnyType<unsigned char>().toText(Var(65.0), 5), "A");
    EXPECT_EQ(AnyType<signed char>().toText(Var(66), 5), "B");
    EXPECT_EQ(AnyType<bool>().toText(Var(3), 5), "1");
    EXPECT_EQ(AnyType<bool>().toText(Var(0.0), 5), "0");
}

TEST(AnyTypeTest, TextHasNoMoreDigitsThanADoubleCanFill) {
    constexpr int kDigits = 1074;
    const std::string text = AnyType<double>().toText(Var(0.5), 2'000'000'000);
    EXPECT_EQ(text, "0.5" + std::string(kDigits - 1, '0'));
    EXPECT_EQ(AnyType<double>().toText(Var(std::numeric_limits<double>::denorm_min()), 1075),
              AnyType<double>().toText(Var(std::numeric_limits<double>::denorm_min()), kDigits));
}

TEST(AnyTypeTest, TextDoesNotDependOnTheProcessLocale) {
    const CommaLocale comma;
    EXPECT_EQ(AnyType<double>().toText(Var(1234567.25), 2), "1234567.25");
    EXPECT_EQ(AnyType<int>().toText(Var(1234567), 2), "1234567");
}

TEST(AnyTypeTest, BytesAreThoseInMemory) {
    const std::int16_t value = -2;
    EXPECT_EQ(AnyType<short>().toBytes(Var(-2.5)),
              std::string(reinterpret_cast<const char*>(&value), sizeof value));
    EXPECT_EQ(AnyType<double>().toBytes(Var(1.0)).size(), 8U);
    EXPECT_EQ(AnyType<bool>().toBytes(Var(5)), std::string(1, '\1'));
}

TEST(AnyTypeTest, ValuesThatFitOnceTruncatedAreTaken) {
    EXPECT_EQ(AnyType<short>().toText(Var(-32768.0), 5), "-32768");
    EXPECT_EQ(AnyType<short>().toText(Var(-32768.9), 5), "-32768");
    EXPECT_EQ(AnyType<short>().toText(Var(32767.9), 5), "32767");
    EXPECT_EQ(AnyType<unsigned short>().toText(Var(-0.9), 5), "0");
    EXPECT_EQ(AnyType<unsigned short>().toText(Var(65535.5), 5), "65535");
}

TEST(AnyTypeTest, ValuesThatDoNotFitAreRefused) {
    EXPECT_THROW((void)AnyType<short>().convert(Var(32768.0)), Poco::RangeException);
    EXPECT_THROW((void)AnyType<short>().convert(Var(-32769)), Poco::RangeException);
    EXPECT_THROW((void)AnyType<unsigned int>().convert(Var(-1.0)), Poco::RangeException);
    EXPECT_THROW((void)AnyType<unsigned int>().convert(Var(-1)), Poco::RangeException);
    EXPECT_THROW((void)AnyType<int>().convert(Var(Poco::UInt64{1} << 40)), Poco::RangeException);
    EXPECT_THROW((void)AnyType<int>().convert(Var(std::nan(""))), Poco::RangeException);
    EXPECT_THROW((void)AnyType<float>().convert(Var(1e300)), Poco::RangeException);
}

TEST(AnyTypeTest, CreateGivesTheStorageTypeOfEachCode) {
    const std::pair<int, std::size_t> sizes[] = {
        {2, 1},  {3, 1},  {4, 2},  {5, 2},  {6, 4},  {7, 4},  {8, 4},  {9, 8}, {10, 1},
        {11, 1}, {12, 1}, {13, 2}, {14, 2}, {15, 8}, {16, 8}, {17, 4}, {18, 4}};
    for (const auto& [code, size] : sizes) {
        EXPECT_EQ(AbstractType::create(code)->toBytes(Var(1)).size(), size) << code;
    }
    EXPECT_EQ(AbstractType::create(4)->convert(Var(1)).type(), typeid(unsigned short));
    EXPECT_EQ(AbstractType::create(14)->convert(Var(1)).type(), typeid(short));
    EXPECT_EQ(AbstractType::create(12)->convert(Var(1)).type(), typeid(signed char));
    EXPECT_EQ(AbstractType::create(10)->convert(Var(1)).type(), typeid(bool));
    EXPECT_EQ(AbstractType::create(8)->convert(Var(1)).type(), typeid(float));
    EXPECT_THROW(AbstractType::create(1), Poco::DataException);
}

TEST(ColumnTest, AliasesOf32BitIntegersReadBackAsTheirCodes) {
    EXPECT_EQ(Column("a", 17).getTypeCode(), 6);
    EXPECT_EQ(Column("a", 17).getTypeName(), "uint32");
    EXPECT_EQ(Column("a", 18).getTypeCode(), 7);
    EXPECT_EQ(Column("a", 18).getTypeName(), "int32");
    EXPECT_THROW(Column("a", 19), Poco::DataException);
}

TEST(ColumnTest, CopiesHaveAHolderOfTheirOwn) {
    const Column original("ACCX", 14);
    const Column copy(original);
    EXPECT_EQ(copy.getName(), "ACCX");
    EXPECT_EQ(copy.getTypeCode(), 14);
    EXPECT_EQ(copy.getTypeName(), "int16");
    EXPECT_EQ(copy.getSize(), 2U);
    EXPECT_NE(&copy.getType(), &original.getType());
    Column assigned("x", 9);
    assigned = original;
    EXPECT_EQ(assigned.getTypeName(), "int16");
    EXPECT_NE(&assigned.getType(), &original.getType());
    const Column& self = assigned;
    assigned = self;
    EXPECT_EQ(assigned.getName(), "ACCX");
}

}  // namespace
}  // namespace SensorFile
