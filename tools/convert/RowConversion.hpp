#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "tools/convert/ChangeLog.hpp"
#include "tools/convert/FixedDecimals.hpp"
#include "tools/recording/Row.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Turns rows into rows of other columns or types, and finds the values that change on their way
/// into a file.
class RowConversion {
 public:
    /// What is known of the files.
    struct Files {
        bool isFromText = false;  ///< the rows come from a text file: "uint8" may hold any number
        bool isToText = false;    ///< they go into a text file, whose digits are few
    };

    /// @param source  of the rows that are given
    /// @param columns  for each column of the target its source's index
    /// @param target  of the rows that are made; with the decimals of text
    /// @param changes  must outlive this
    RowConversion(const SensorFile::SensorFileConfig& source, std::vector<std::size_t> columns,
                  const SensorFile::SensorFileConfig& target, Files files, ChangeLog& changes);

    /// @param source  a row
    /// @param number  of the row, for messages
    /// @return the row of the target, until the next call
    /// @throws Poco::DataException naming row and column, if a value is beyond a type that was
    ///         chosen for it; as ChangeLog::add()
    const Row& apply(const Row& source, std::uint64_t number) {
        const Row& row = isPassedOn_ ? source : convert(source, number);
        if (!decimalColumns_.empty()) checkDecimals(row, number);
        return row;
    }

 private:
    enum class StepKind {
        kByte,       ///< numbers beyond 8 bits lose the others
        kCharacter,  ///< blanks are no characters in text
        kType,       ///< the type changes
    };
    struct Step {
        StepKind kind;
        std::size_t column;  ///< of the target
    };

    void plan(const SensorFile::SensorFileConfig& source, Files files);
    const Row& convert(const Row& source, std::uint64_t number);
    void takeStep(const Step& step, const Row& source, std::uint64_t number);
    bool keepByte(std::size_t column);
    bool keepCharacter(std::size_t column);
    bool changeType(const Row& source, std::size_t column, std::uint64_t number);
    void checkDecimals(const Row& row, std::uint64_t number);
    void addDecimals(const Row& row, std::size_t column, std::uint64_t number);
    [[nodiscard]] std::string placeOf(std::size_t column, std::uint64_t number) const;

    std::vector<std::size_t> columns_;
    std::vector<std::string> names_;
    std::vector<Step> steps_;
    std::vector<std::size_t> decimalColumns_;
    FixedDecimals decimals_;
    ChangeLog& changes_;
    bool isPassedOn_ = false;  ///< rows stay what they are
    Row row_;
};

}  // namespace SensorFileTool
