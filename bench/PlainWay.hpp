#pragma once

#include "bench/Workload.hpp"

#include <iosfwd>
#include <sstream>

#include <Poco/BinaryReader.h>
#include <Poco/BinaryWriter.h>

/// How one writes such files without further thought: value by value through POCO's binary reader
/// and writer and through string streams, all types known when compiling.
namespace Bench {

void plainWriteRow(Poco::BinaryWriter& writer, const BinaryRow& row);
void plainReadRow(Poco::BinaryReader& reader, BinaryRow& row);

/// Writes text rows through one string stream, used again for each value.
class PlainTextRows {
 public:
    PlainTextRows();
    void write(std::ostream& out, const TextRow& row);

 private:
    std::ostringstream value_;
};

void plainReadTextRow(std::istream& in, TextRow& row);

}  // namespace Bench
