/// Reads a hostile CSV file. The first byte of the input chooses separator, header and decimal
/// sign, the rest is the file.
///
/// Beyond "no crash": every loop ends, each row without a defect has a cell for each column, what
/// counts as a number is read as one, and the same file gives the same rows again.

#include "fuzz/Harness.hpp"
#include "tools/import/ColumnGuess.hpp"
#include "tools/import/CsvTable.hpp"
#include "tools/import/StampSteps.hpp"

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <Poco/Exception.h>

namespace {

using SensorFileTool::CsvDialect;
using SensorFileTool::CsvNumber;
using SensorFileTool::CsvOptions;
using SensorFileTool::CsvTable;

CsvOptions optionsOf(std::uint8_t choice) {
    constexpr char kSeparators[] = {',', ';', '\t', SensorFileTool::kCsvBlanks};
    CsvOptions options;
    if ((choice & 4) != 0) options.separator = kSeparators[choice & 3];
    if ((choice & 8) != 0) options.hasHeader = (choice & 16) != 0;
    options.style.hasDecimalComma = (choice & 32) != 0;
    return options;
}

void lookAtCell(std::string_view cell, const CsvOptions& options) {
    const CsvNumber number = SensorFileTool::scanNumber(cell, options.style);
    double value = 0.0;
    float single = 0.0F;
    const bool isRead = readDouble(cell, options.style, value);
    const bool isText =
        number.kind == CsvNumber::Kind::kText || number.kind == CsvNumber::Kind::kBlank;
    if (isText)
        Fuzz::require(!isRead && !readFloat(cell, options.style, single), "text read as a number");
    if (number.kind == CsvNumber::Kind::kInteger)
        Fuzz::require(isRead && std::abs(value) == static_cast<double>(number.magnitude),
                      "an integer is read as another number");
}

/// A text of all that was found.
std::string readAll(const std::string& path, const CsvDialect& dialect, const CsvOptions& options) {
    std::string found;
    CsvTable table(path, "input", dialect);
    SensorFileTool::StampSteps steps({});
    std::vector<SensorFileTool::ColumnGuess> guesses(table.columns().size(),
                                                     SensorFileTool::ColumnGuess(true));
    while (table.next()) {
        found += std::to_string(table.reader().line()) + "\n";
        if (table.defect()) {
            found += table.describe(*table.defect());
            continue;
        }
        Fuzz::require(table.cells().size() == table.columns().size(), "a row of another length");
        for (std::size_t i = 0; i < guesses.size(); ++i) {
            lookAtCell(table.cells()[i], options);
            guesses[i].add(table.cells()[i], options.style, table.reader().line());
            found += std::string(table.cells()[i]) + "\n";
        }
        steps.add(table.cells()[0], options.style);
    }
    for (const SensorFileTool::ColumnGuess& guess : guesses)
        found += std::to_string(guess.getTypeCode());
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::string path = Fuzz::scratchPath("input.csv");
    Fuzz::writeFile(path, Fuzz::toText(data + 1, size - 1));
    try {
        const CsvOptions options = optionsOf(data[0]);
        const CsvDialect dialect = detectDialect(path, "input", options);
        Fuzz::require(readAll(path, dialect, options) == readAll(path, dialect, options),
                      "read twice, it differs");
    } catch (const Poco::Exception&) {
        // A refused file is an answer.
    }
    return 0;
}
