#pragma once

#include "tools/common/Console.hpp"
#include "tools/common/InputFile.hpp"
#include "tools/import/ColumnGuess.hpp"
#include "tools/import/CsvDialect.hpp"
#include "tools/import/CsvTable.hpp"
#include "tools/import/ImportColumns.hpp"
#include "tools/import/StampSteps.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace SensorFileTool {

/// What the user says about an import.
struct ImportOptions {
    CsvOptions csv;
    std::string columns;
    std::string renaming;
    std::string blank;  ///< what blank cells stand for; empty: nan
    std::string timeColumn;
    std::string timeUnit;
    std::optional<double> frequency;  ///< Hz
    std::optional<int> precision;
    bool isBinary = true;
    bool skipsBad = false;
};

/// What is made of a CSV file: found by reading the file once, unless the user says all of it.
class ImportPlan {
 public:
    /// @throws Poco::FileException, Poco::DataFormatException as CsvTable; the latter also naming
    ///         line and column, if a column holds both numbers and other text, or telling that no
    ///         column holds numbers
    /// @throws UsageException as chooseImportColumns() and chooseTimeColumn()
    ImportPlan(const Console& console, const InputFile& input, const CsvDialect& dialect,
               const ImportOptions& options);

    /// Those that are imported; all have a type.
    [[nodiscard]] const std::vector<ImportColumn>& columns() const { return columns_; }
    [[nodiscard]] double getFrequency() const { return frequency_; }
    /// Digits behind the point that a text file needs.
    [[nodiscard]] int getPrecision() const { return precision_; }

    /// Lines that tell the columns with their types, those left out, and the frequency.
    [[nodiscard]] std::string describe() const;

 private:
    /// A column that the user wants, and what its cells tell.
    struct Candidate {
        ImportColumn column;
        ColumnGuess guess;
        bool isScanned;
        std::string remark;
    };

    void findTimeColumn();
    [[nodiscard]] bool isScanNeeded() const;
    void scan(const Console& console, const InputFile& input, CsvTable& table);
    void scanRow(const CsvTable& table);
    void refuseMixed(const InputFile& input, const CsvTable& table) const;
    void decideType(Candidate& candidate) const;
    void measureFrequency();

    ImportOptions options_;
    std::vector<Candidate> candidates_;
    std::vector<ImportColumn> columns_;
    std::optional<StampSteps> stamps_;
    std::size_t stampCandidate_ = 0;
    bool hasRows_ = false;
    double frequency_;
    std::string frequencySource_;
    int precision_ = 0;
};

}  // namespace SensorFileTool
