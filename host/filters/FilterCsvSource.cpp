#include "host/filters/FilterCsvSource.hpp"

#include "host/filters/DisplayValue.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Poco/Exception.h>

namespace Quoril::Core {
namespace {

constexpr double kShownPerSecond = 10.0;
constexpr double kRowsBetweenShows = 1000.0;

}  // namespace

FilterCsvSource::FilterCsvSource(const std::string& name)
    : Filter(name, true),
      fileName_(kFileName, getPropertyBag()),
      separator_(kSeparator, getPropertyBag()),
      header_(kHeader, getPropertyBag()),
      columns_(kColumns, getPropertyBag()),
      timeColumn_(kTimeColumn, getPropertyBag()),
      scaleTime_(kScaleTime, getPropertyBag(), 1.0),
      rate_(kRate, getPropertyBag(), 0.0),
      active_(kActive, getPropertyBag(), true),
      rows_(kRows, getPropertyBag(), 0),
      rewind_(kRewind, getPropertyBag()) {
    separator_.set(",");
    header_.setEntries({"Auto", "Yes", "No"});
    fileName_.setHints(/*mustExist=*/true, /*isFolder=*/false, /*isWritten=*/false);
    active_.setIsPersistent(false);
    rows_.setIsPersistent(false);
    rows_.setIsWritable(false);
    registerProperties();
    attachHandlers();
}

FilterCsvSource::~FilterCsvSource() = default;

void FilterCsvSource::registerProperties() {
    PropertyBag& bag = *getPropertyBag();
    bag.registerProperty(kFileName, fileName_);
    bag.registerProperty(kSeparator, separator_);
    bag.registerProperty(kHeader, header_);
    bag.registerProperty(kColumns, columns_);
    bag.registerProperty(kTimeColumn, timeColumn_);
    bag.registerProperty(kScaleTime, scaleTime_);
    bag.registerProperty(kRate, rate_);
    bag.registerProperty(kActive, active_);
    bag.registerProperty(kRows, rows_);
    bag.registerProperty(kRewind, rewind_);
}

// Typed handlers refuse wrong texts before they are stored; the file is read after the store.
void FilterCsvSource::attachHandlers() {
    separator_.attach(*this, &FilterCsvSource::onSeparator);
    columns_.attach(*this, &FilterCsvSource::onColumns);
    timeColumn_.attach(*this, &FilterCsvSource::onTimeColumn);
    scaleTime_.attach(*this, &FilterCsvSource::onScaleTime);
    rate_.attach(*this, &FilterCsvSource::onRate);
    active_.attach(*this, &FilterCsvSource::onActive);
    fileName_.attach(*this, &FilterCsvSource::reopen);
    separator_.attach(*this, &FilterCsvSource::reopen);
    header_.attach(*this, &FilterCsvSource::reopen);
    columns_.attach(*this, &FilterCsvSource::reopen);
    timeColumn_.attach(*this, &FilterCsvSource::reopen);
    rewind_.attach(*this, &FilterCsvSource::reopen);
}

void FilterCsvSource::onSeparator(const std::string& text) {
    format_.separator = CsvSeparator::parse(text);
}

void FilterCsvSource::onColumns(const std::string& text) {
    selection_ = parseColumnSelection(text);
    rebuildPins();
}

void FilterCsvSource::onTimeColumn(const std::string& text) {
    if (text.empty())
        timeReference_.reset();
    else
        timeReference_ = parseColumnReference(text);
}

void FilterCsvSource::onScaleTime(const double& scale) {
    if (!std::isfinite(scale)) throw Poco::RangeException("\"Scale Time\" must be a finite number");
    timeScale_ = scale;
}

void FilterCsvSource::onRate(const double& rate) {
    if (!std::isfinite(rate) || rate < 0.0)
        throw Poco::RangeException("\"Rate\" must be 0 or more rows per second");
    rowRate_ = rate;
    pace_.setRate(rate);
}

void FilterCsvSource::onActive(const bool& isActive) {
    if (isActive && !isActive_ && !hasRow_) reopen();
    isActive_ = isActive;
    showRows();
}

// A pin that keeps its name and its place keeps its connections.
void FilterCsvSource::rebuildPins() {
    std::size_t kept = 0;
    while (kept < pins_.size() && kept < selection_.size() &&
           pins_[kept]->getName() == selection_[kept].pin)
        ++kept;
    while (pins_.size() > kept)
        pins_.pop_back();
    for (std::size_t i = kept; i < selection_.size(); ++i)
        pins_.push_back(std::make_unique<Pin>(selection_[i].pin, this));
}

void FilterCsvSource::reopen() {
    table_.reset();
    hasRow_ = false;
    rowIndex_ = 0;
    showRows();
    format_.header = static_cast<CsvHeader>(header_.get());
    const std::string path = fileName_.get();
    if (path.empty()) return;
    auto table = std::make_unique<CsvTable>(path, format_, selection_, timeReference_);
    if (selection_.empty()) return;
    table_ = std::move(table);
    fitPins();
    readRow();
}

void FilterCsvSource::fitPins() {
    for (std::size_t i = 0; i < pins_.size(); ++i)
        pins_[i]->getValue().resize(static_cast<Eigen::Index>(table_->getValues(i).size()), 1);
}

void FilterCsvSource::readRow() {
    hasRow_ = false;
    hasRow_ = table_->next();
}

void FilterCsvSource::process() {
    if (!isActive_ || !hasRow_) return;
    sendRow();
    ++rowIndex_;
    pace_.advance();
    try {
        readRow();
    } catch (...) {
        stopSending();
        throw;
    }
    if (!hasRow_) return stopSending();
    const double step = rowRate_ > 0.0 ? rowRate_ / kShownPerSecond : kRowsBetweenShows;
    if (static_cast<double>(rowIndex_ - shownIndex_) >= step) showRows();
}

void FilterCsvSource::sendRow() {
    const double timeStamp = getTimeStamp();
    for (std::size_t i = 0; i < pins_.size(); ++i) {
        const std::span<const double> values = table_->getValues(i);
        std::copy(values.begin(), values.end(), pins_[i]->getValue().data());
        pins_[i]->push(timeStamp);
    }
}

double FilterCsvSource::getTimeStamp() const {
    if (timeReference_) return table_->getTime() * timeScale_;
    const auto row = static_cast<double>(rowIndex_);
    return rowRate_ > 0.0 ? row / rowRate_ : row;
}

void FilterCsvSource::stopSending() {
    active_.set(false);
}

void FilterCsvSource::showRows() {
    shownIndex_ = rowIndex_;
    constexpr std::uint64_t kMost = std::numeric_limits<unsigned int>::max();
    setDisplayValue(rows_, static_cast<unsigned int>(std::min(rowIndex_, kMost)));
}

std::optional<double> FilterCsvSource::getNextDueTime() const {
    if (!isActive_ || !hasRow_) return std::nullopt;
    return pace_.getDueTime();
}

}  // namespace Quoril::Core
