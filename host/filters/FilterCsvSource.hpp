#pragma once

#include "framework/CommandProperty.hpp"
#include "framework/EnumProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/OutputPin.hpp"
#include "framework/StringProperty.hpp"
#include "framework/ValueProperty.hpp"
#include "host/PacedSource.hpp"
#include "host/filters/ColumnSelection.hpp"
#include "host/filters/CsvTable.hpp"
#include "host/filters/RowPace.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <Eigen/Core>

namespace Quoril::Core {

/// Sends the rows of a CSV file: one row a call, as one matrix on every pin.
///
/// Output pins: one for each entry of "Columns", n x 1 with n columns (or elements of lists).
///
/// | property      | kind    | default | meaning                                                  |
/// |---------------|---------|---------|----------------------------------------------------------|
/// | "File Name"   | file    | ""      | the file to read; a pipe is possible                     |
/// | "Separator"   | text    | ","     | between fields: a character, "tab" or "blanks"           |
/// | "Header"      | choice  | "Auto"  | "Auto", "Yes", "No": whether the first line is a header  |
/// | "Columns"     | text    | ""      | which columns form which pins: "acc=ax,ay,az;t=time"     |
/// | "Time Column" | text    | ""      | its number x "Scale Time" is the time stamp, seconds     |
/// | "Scale Time"  | double  | 1.0     | seconds per unit of the time column; 1e-9 for ns         |
/// | "Rate"        | double  | 0.0     | rows per second; 0: as fast as the graph takes them      |
/// | "Active"      | boolean | true    | false pauses; turns false at the end and after an error  |
/// | "Rows"        | count   | 0       | rows sent since the first one (read-only)                |
/// | "Rewind"      | command |         | opens the file anew: the first row is the next           |
///
/// parseColumnSelection() and parseColumnReference() say how columns are written, CsvSeparator how
/// separators are, CsvTable what a file may hold.
///
/// Without a time column the time stamp of row i (from 0) is i / "Rate", or i when "Rate" is 0.
/// "Active" set to true at the end begins again with the first row. "Rows" is shown ten times a
/// second, every 1000 rows at rate 0, and whenever the source stops or pauses.
///
/// The properties that say how to read the file may be set in any order: each change reads the
/// file's first row anew and makes the pins. What is wrong with the file is thrown to the setter
/// then, but the new value stays, so that two changes which belong together can be made one after
/// the other; until it is right the source has nothing to send. A property's own wrong text is
/// refused. A bad row that is met under way is thrown from process(), after the row before it was
/// sent, and stops the source.
///
/// Call under the filter's synchronizer, as the host does.
class QUORIL_CORE_API FilterCsvSource final : public Filter, public PacedSource {
 public:
    static constexpr const char* kClassName = "FilterCsvSource";
    static constexpr const char* kFileName = "File Name";
    static constexpr const char* kSeparator = "Separator";
    static constexpr const char* kHeader = "Header";
    static constexpr const char* kColumns = "Columns";
    static constexpr const char* kTimeColumn = "Time Column";
    static constexpr const char* kScaleTime = "Scale Time";
    static constexpr const char* kRate = "Rate";
    static constexpr const char* kActive = "Active";
    static constexpr const char* kRows = "Rows";
    static constexpr const char* kRewind = "Rewind";

    explicit FilterCsvSource(const std::string& name);
    ~FilterCsvSource() override;

    void process() override;
    [[nodiscard]] const char* getClassName() const override { return kClassName; }
    [[nodiscard]] std::optional<double> getNextDueTime() const override;
    [[nodiscard]] bool isFinished() const override { return !hasRow_; }

 private:
    using Pin = OutputPin<Eigen::MatrixXd>;

    void registerProperties();
    void attachHandlers();
    void onSeparator(const std::string& text);
    void onColumns(const std::string& text);
    void onTimeColumn(const std::string& text);
    void onScaleTime(const double& scale);
    void onRate(const double& rate);
    void onActive(const bool& isActive);

    void reopen();
    void rebuildPins();
    void fitPins();
    void readRow();
    void sendRow();
    void stopSending();
    void showRows();
    [[nodiscard]] double getTimeStamp() const;

    std::vector<std::unique_ptr<Pin>> pins_;

    FileNameProperty fileName_;
    StringProperty separator_;
    EnumProperty<std::string> header_;
    StringProperty columns_;
    StringProperty timeColumn_;
    ValueProperty<double> scaleTime_;
    ValueProperty<double> rate_;
    ValueProperty<bool> active_;
    ValueProperty<unsigned int> rows_;
    CommandProperty rewind_;

    // What the properties say, at hand for every row.
    CsvFormat format_;
    std::vector<PinColumns> selection_;
    std::optional<ColumnReference> timeReference_;
    double timeScale_ = 1.0;
    double rowRate_ = 0.0;
    bool isActive_ = true;

    std::unique_ptr<CsvTable> table_;
    bool hasRow_ = false;  ///< the table's present row waits to be sent
    std::uint64_t rowIndex_ = 0;
    std::uint64_t shownIndex_ = 0;
    RowPace pace_;
};

}  // namespace Quoril::Core
