#include "tests/stress/RecordingLedger.hpp"

#include "host/Topology.hpp"
#include "tests/stress/FilterLook.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include <Poco/Any.h>
#include <Poco/StringTokenizer.h>

namespace Stress {

using Quoril::Core::AbstractInputPin;
using Quoril::Core::AbstractOutputPin;
using Quoril::Core::AbstractProperty;
using Quoril::Core::Filter;

namespace {

constexpr unsigned kUChar = 0;
constexpr unsigned kChar = 1;
constexpr unsigned kDouble = 7;
/// Types that hold every number of a source: UINT32, INT32, DOUBLE, UINT64, INT64.
constexpr std::array kWideTypes{4U, 5U, kDouble, 13U, 14U};

bool isOn(const AbstractProperty& property) {
    return *Poco::AnyCast<const bool*>(property.getAny());
}

const MatrixInput* findInput(const Filter& filter, const std::string& name) {
    return dynamic_cast<const MatrixInput*>(filter.findInputPin(name));
}

std::size_t countNames(const std::string& text) {
    return Poco::StringTokenizer(
               text, ";, ",
               Poco::StringTokenizer::TOK_IGNORE_EMPTY | Poco::StringTokenizer::TOK_TRIM)
        .count();
}

bool comesFromNumberSource(const AbstractOutputPin& output) {
    return dynamic_cast<const NumberSource*>(output.getManager()) != nullptr;
}

/// Samples that the filter took away for good.
std::uint64_t countTaken(const MatrixInput* pin) {
    if (pin == nullptr) return 0;
    return pin->getCounters().taken - (pin->hasData() ? 1 : 0);
}

}  // namespace

RecordingLedger::RecordingLedger(std::string folder) : folder_(std::move(folder)) {}
RecordingLedger::~RecordingLedger() = default;

void RecordingLedger::watch(Filter& filter) {
    AbstractProperty* record = filter.getPropertyBag()->find("Record");
    if (record == nullptr) return;
    AbstractProperty* pause = filter.getPropertyBag()->find("Pause");
    {
        const std::lock_guard lock(mutex_);
        recorders_.push_back({&filter, record, pause, std::nullopt});
    }
    record->addObserver(*this);
    if (pause != nullptr) pause->addObserver(*this);
}

std::optional<ClosedRecording> RecordingLedger::release(Filter& filter) {
    for (const char* name : {"Record", "Pause"})
        if (AbstractProperty* property = filter.getPropertyBag()->find(name))
            property->removeObserver(*this);
    const std::lock_guard lock(mutex_);
    const Recorder* recorder = find(filter);
    if (recorder == nullptr) return std::nullopt;
    std::optional<ClosedRecording> closing;
    if (recorder->open) closing = recorder->open->closing;
    recorders_.remove_if([&](const Recorder& other) { return other.filter == &filter; });
    return closing;
}

void RecordingLedger::close(ClosedRecording recording) {
    const std::lock_guard lock(mutex_);
    closeLocked(std::move(recording));
}

void RecordingLedger::closeLocked(ClosedRecording recording) {
    const std::string file = folder_ + "/closed-" + std::to_string(nextFile_++);
    std::filesystem::rename(recording.file, file);
    recording.file = file;
    closed_.push_back(std::move(recording));
}

void RecordingLedger::noteConnection(const Filter& filter, const std::string& pin,
                                     std::size_t sampleSize) {
    const std::lock_guard lock(mutex_);
    Recorder* recorder = find(filter);
    if (recorder == nullptr || !recorder->open) return;
    Open& open = *recorder->open;
    open.closing.equalColumns.clear();
    // Rows of another size are told and left out.
    const auto width = open.widths.find(pin);
    if (width != open.widths.end() && width->second != sampleSize) open.isExact = false;
}

void RecordingLedger::noteOrder(const Filter& filter) {
    const std::lock_guard lock(mutex_);
    Recorder* recorder = find(filter);
    if (recorder != nullptr && recorder->open) recorder->open->closing.areNumbersGrowing = false;
}

std::vector<ClosedRecording> RecordingLedger::takeClosed() {
    const std::lock_guard lock(mutex_);
    return std::exchange(closed_, {});
}

void RecordingLedger::valueChanged(const AbstractProperty& property) {
    Filter* const filter = findOwner(property);
    if (filter == nullptr) return;
    // Without the mutex, since it takes the locks of other layouts; only edits start recordings.
    const bool isStart = property.getName() == "Record" && isOn(property);
    std::optional<Open> started;
    if (isStart) started = start(*filter);
    const std::lock_guard lock(mutex_);
    Recorder* const recorder = find(*filter);
    if (recorder == nullptr) return;
    if (isStart) {
        recorder->open = std::move(started);
    } else if (!recorder->open) {
        return;
    } else if (&property == recorder->record) {
        closeLocked(end(*recorder->open));
        recorder->open.reset();
    } else {
        recorder->open->isExact = false;
    }
}

Filter* RecordingLedger::findOwner(const AbstractProperty& property) {
    const std::lock_guard lock(mutex_);
    for (const Recorder& recorder : recorders_)
        if (recorder.record == &property || recorder.pause == &property) return recorder.filter;
    return nullptr;
}

void RecordingLedger::attributeChanged(const AbstractProperty& /*property*/) {}

RecordingLedger::Recorder* RecordingLedger::find(const Filter& filter) {
    const auto found =
        std::find_if(recorders_.begin(), recorders_.end(),
                     [&](const Recorder& recorder) { return recorder.filter == &filter; });
    return found == recorders_.end() ? nullptr : &*found;
}

RecordingLedger::Open RecordingLedger::start(Filter& filter) {
    Open open;
    open.closing.file = textOf(filter, "File Name");
    open.closing.filter = filter.getName();
    open.topologyBefore = Quoril::Core::Topology::version();
    if (filter.getPropertyBag()->find("Pins Number") != nullptr)
        describe(filter, open);
    else
        open.lastPin = findInput(filter, "Button");
    open.takenBefore = countTaken(open.lastPin);
    return open;
}

/// The columns of a recorder whose columns are free, and what is known of their values.
void RecordingLedger::describe(Filter& filter, Open& open) {
    ClosedRecording& closing = open.closing;
    closing.isBinary = textOf(filter, "Binary") == "1";
    closing.areNumbersGrowing = true;
    std::size_t column = textOf(filter, "Save Timestamp") == "1" ? 1 : 0;
    if (column == 1 && !closing.isBinary) open.isExact = false;
    const int pinCount = std::stoi(textOf(filter, "Pins Number"));
    for (int i = 1; i <= pinCount; ++i) {
        const std::string number = std::to_string(i);
        open.lastPin = findInput(filter, "input#" + number);
        const std::size_t width = countNames(textOf(filter, "ColNames#" + number));
        open.widths[open.lastPin->getName()] = width;
        const auto type = static_cast<unsigned>(std::stoul(textOf(filter, "ColTypes#" + number)));
        if (!closing.isBinary && type != kDouble) open.isExact = false;
        if (!closing.isBinary && (type == kUChar || type == kChar)) closing.areRowsReadable = false;
        if (open.lastPin->getBuffer().isLifo) closing.areNumbersGrowing = false;
        const AbstractOutputPin* output = open.lastPin->getOutputPin();
        if (output != nullptr && sampleSizeOf(*output) != width) open.isExact = false;
        const bool isWide =
            std::find(kWideTypes.begin(), kWideTypes.end(), type) != kWideTypes.end();
        if (output != nullptr && comesFromNumberSource(*output) && isWide && width > 0)
            closing.equalColumns.emplace_back(column, column + width);
        column += width;
    }
    // Elsewhere the columns of a row are not the pins' own.
    if (!open.isExact) closing.equalColumns.clear();
}

ClosedRecording RecordingLedger::end(const Open& open) {
    ClosedRecording closing = open.closing;
    closing.mostRows = countTaken(open.lastPin) - open.takenBefore;
    if (!open.isExact) return closing;
    closing.fewestRows = closing.mostRows;
    // A unit's recorder holds samples until all pins have one. Such a one is lost with its buffer,
    // which only a change of the graph does.
    if (closing.filter.rfind("unit", 0) != 0) return closing;
    const std::uint64_t changes = Quoril::Core::Topology::version() - open.topologyBefore;
    closing.fewestRows -= std::min(closing.fewestRows, changes);
    return closing;
}

}  // namespace Stress
