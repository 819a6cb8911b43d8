#include "host/filters/MatrixText.hpp"
#include "tests/host/filters/Support.hpp"

#include <cmath>

namespace Quoril::Core {
namespace {

using TestKit::messageOf;

TEST(MatrixTextTest, RowsAndValuesAreRead) {
    EXPECT_EQ(parseMatrix("1 0 0; 0 1 0; 0 0 1"), Eigen::MatrixXd::Identity(3, 3));
    EXPECT_EQ(parseMatrix("1,2;3 ,4"), (Eigen::MatrixXd(2, 2) << 1, 2, 3, 4).finished());
    EXPECT_EQ(parseMatrix(" -1.5e3\t+2\n;\n0.1 .5 ; "),
              (Eigen::MatrixXd(2, 2) << -1500, 2, 0.1, 0.5).finished());
    EXPECT_EQ(parseMatrix("7"), Eigen::MatrixXd::Constant(1, 1, 7.0));
    EXPECT_TRUE(std::isnan(parseMatrix("nan")(0, 0)));
}

TEST(MatrixTextTest, TextWithoutValuesIsTheEmptyMatrix) {
    EXPECT_EQ(parseMatrix("").size(), 0);
    EXPECT_EQ(parseMatrix(" \n ").size(), 0);
}

TEST(MatrixTextTest, BadTextIsRefusedWithItsPlace) {
    struct Case {
        const char* text;
        const char* message;
    };
    const Case cases[] = {
        {"1 2; 3 x", "row 2, value 2: 'x' is not a number"},
        {"1,,2", "row 1, value 2: '' is not a number"},
        {"1,", "row 1, value 2: '' is not a number"},
        {"1 2; 3", "row 2 has 1 values, row 1 has 2"},
        {"1; 2 3", "row 2 has 2 values, row 1 has 1"},
        {"1;;2", "row 2 has 0 values, row 1 has 1"},
        {";", "row 1 has 0 values, row 1 has 0"},
        {"[1 2]", "row 1, value 1: '[1' is not a number"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(messageOf<Poco::DataFormatException>([&] { (void)parseMatrix(c.text); }),
                  c.message)
            << c.text;
}

}  // namespace
}  // namespace Quoril::Core
