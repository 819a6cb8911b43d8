#include "bench/PlainWay.hpp"

#include <iomanip>
#include <istream>
#include <locale>
#include <ostream>
#include <string>

#include <Poco/Types.h>

namespace Bench {

void plainWriteRow(Poco::BinaryWriter& writer, const BinaryRow& row) {
    writer << static_cast<Poco::UInt16>(row.front());
    for (std::size_t column = 1; column + 1 < kBinaryColumns; ++column) {
        writer << static_cast<Poco::Int16>(row[column]);
    }
    writer << static_cast<Poco::UInt8>(row.back());
}

void plainReadRow(Poco::BinaryReader& reader, BinaryRow& row) {
    Poco::UInt16 counter = 0;
    reader >> counter;
    row.front() = counter;
    for (std::size_t column = 1; column + 1 < kBinaryColumns; ++column) {
        Poco::Int16 value = 0;
        reader >> value;
        row[column] = value;
    }
    Poco::UInt8 flags = 0;
    reader >> flags;
    row.back() = flags;
}

PlainTextRows::PlainTextRows() {
    value_.imbue(std::locale::classic());
    value_ << std::fixed << std::setprecision(kTextDecimals);
}

void PlainTextRows::write(std::ostream& out, const TextRow& row) {
    for (const double number : row) {
        value_.str({});
        value_ << number;
        std::string text = value_.str();
        while (text.back() == '0')
            text.pop_back();
        if (text.back() == '.') text.pop_back();
        out << text << '\t';
    }
    out << '\n';
}

void plainReadTextRow(std::istream& in, TextRow& row) {
    for (double& value : row)
        in >> value;
}

}  // namespace Bench
