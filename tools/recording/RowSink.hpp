#pragma once

#include "tools/recording/Row.hpp"

namespace SensorFileTool {

/// Takes the rows of a recording, one by one, and makes a file of some format of them.
class RowSink {
 public:
    RowSink() = default;
    RowSink(const RowSink&) = delete;
    RowSink& operator=(const RowSink&) = delete;
    virtual ~RowSink() = default;

    /// @param row  of the columns that the sink was made for
    /// @throws Poco::Exception telling the path and what went wrong
    virtual void write(const Row& row) = 0;
    /// After the last row: the file is whole then.
    /// @throws as write()
    virtual void finish() = 0;
};

}  // namespace SensorFileTool
