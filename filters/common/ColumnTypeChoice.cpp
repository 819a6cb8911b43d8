#include "filters/common/ColumnTypeChoice.hpp"

#include "sensorfile/ColumnType.hpp"

#include <Poco/Exception.h>

namespace Filters {

const std::vector<std::string>& columnTypeChoices() {
    static const std::vector<std::string> choices{"UCHAR", "CHAR",   "USHORT", "SHORT",  "UINT32",
                                                  "INT32", "FLOAT",  "DOUBLE", "BOOL",   "UINT8",
                                                  "INT8",  "UINT16", "INT16",  "UINT64", "INT64"};
    return choices;
}

int columnTypeCode(unsigned position) {
    if (position >= columnTypeChoices().size()) throw Poco::DataException(kBadColumnType);
    // The choices stand in the order of the type codes, which begin at 2.
    return static_cast<int>(position) + SensorFile::kUChar;
}

const std::vector<std::string>& timeStampTypeChoices() {
    static const std::vector<std::string> choices{"DOUBLE", "UINT32"};
    return choices;
}

int timeStampTypeCode(unsigned position) {
    if (position >= timeStampTypeChoices().size()) throw Poco::DataException(kBadColumnType);
    return position == 0 ? SensorFile::kDouble : SensorFile::kUInt32;
}

const std::vector<std::string>& calibTypeChoices() {
    static const std::vector<std::string> choices{"DOUBLE", "INT32"};
    return choices;
}

}  // namespace Filters
