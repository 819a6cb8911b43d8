#pragma once

#include "tools/check/DefectList.hpp"
#include "tools/check/SectionMap.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Looks at what readers of a file's sections do not mind: sizes that do not fit, names that other
/// readers trip over, numbers that cannot be meant.
class SectionLint {
 public:
    /// @param map  gets a patch for each size that is wrong
    /// @param head  the file's bytes up to its rows
    SectionLint(SectionMap& map, std::string head, DefectList& defects)
        : map_(map), head_(std::move(head)), defects_(defects) {}

    void run();

 private:
    void lintHeader();
    void lintBinaryHeader();
    void lintTextColumns();
    void lintBinaryColumn(std::size_t column, std::int64_t offset);
    void lintTextSize(std::size_t column, std::size_t first, std::size_t end);
    void lintFrequency();
    void lintBinaryName(std::int64_t offset, const std::string& name);
    void lintNames(const std::vector<std::string>& names, const std::vector<std::int64_t>& offsets,
                   const std::string& what);
    void lintBlanks(const std::vector<std::string>& names);
    void lintDate(std::int64_t offset, const char* section);
    void lintCalibration();
    void lintCalibrationSize();
    void findRecords(const std::vector<std::string>& names);
    void lintLineEnds();
    void lintVersion(std::int64_t offset, const char* section, unsigned version, bool isKnown);
    void patchNumber(std::int64_t offset, std::uint64_t value, std::size_t size, bool isBigEndian,
                     const std::string& reason);
    [[nodiscard]] std::uint64_t numberAt(std::int64_t offset, std::size_t size,
                                         bool isBigEndian) const;
    [[nodiscard]] unsigned byteAt(std::int64_t offset) const;

    SectionMap& map_;
    std::string head_;
    DefectList& defects_;
    std::vector<std::int64_t> columnOffsets_;
    std::vector<std::int64_t> recordOffsets_;
};

}  // namespace SensorFileTool
