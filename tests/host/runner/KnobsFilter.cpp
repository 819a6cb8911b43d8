#include "tests/host/runner/KnobsFilter.hpp"

#include "framework/FilterFactory.hpp"
#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"

#include <cerrno>
#include <utility>

#include <Poco/Exception.h>

namespace Quoril::Runner::Testing {

namespace {
class KnobsPlugin final : public Core::DefaultPlugin {
 public:
    KnobsPlugin() : DefaultPlugin("Knobs", "1.2.3") {
        metaData().name = "Knobs";
        metaData().version = "1.2.3";
        addFilterFactory(std::make_unique<Core::FilterFactory<KnobsFilter>>(
            "Knobs", Core::ComponentVersion("1.2.3")));
    }
};
}  // namespace

KnobsFilter::KnobsFilter(const std::string& name)
    : Filter(name, true),
      record("Record", getPropertyBag()),
      freq("Freq", getPropertyBag(), 200.0),
      pinsNumber("Pins Number", getPropertyBag()),
      mode("Mode", getPropertyBag()),
      fileName("File Name", getPropertyBag()),
      readFile("Read File", getPropertyBag()),
      refusing("Refusing", getPropertyBag()),
      save("Save", getPropertyBag()),
      shown("Shown", getPropertyBag(), 2),
      out("out", this),
      calib("calibInput#1", this) {
    calib.setBuffer({.size = 1});
    mode.setEntries({"Slow", "Fast"});
    pinsNumber.setRange(0, 3, 1);
    record.setIsPersistent(false);
    shown.setIsWritable(false);
    fileName.setHints(/*mustExist=*/false, /*isFolder=*/false, /*isWritten=*/true);
    readFile.setHints(/*mustExist=*/true, /*isFolder=*/false, /*isWritten=*/false);
    for (Core::AbstractProperty* property : std::initializer_list<Core::AbstractProperty*>{
             &record, &freq, &pinsNumber, &mode, &fileName, &readFile, &refusing, &save, &shown})
        getPropertyBag()->registerProperty(property->getName(), *property);
    record.attach(*this, &KnobsFilter::onRecord);
    fileName.attach(*this, &KnobsFilter::onFileName);
    readFile.attach(*this, &KnobsFilter::onRefusing);
    refusing.attach(*this, &KnobsFilter::onRefusing);
    pinsNumber.attach(*this, &KnobsFilter::onPinsNumber);
    save.attach(*this, &KnobsFilter::onSave);
}

KnobsFilter::~KnobsFilter() = default;

std::vector<std::string>& KnobsFilter::log() {
    static std::vector<std::string> entries;
    return entries;
}

void KnobsFilter::note(const std::string& what) {
    log().push_back(getName() + "." + what);
}

void KnobsFilter::onRecord(const bool& value) {
    note(value ? "Record=1" : "Record=0");
    if (value || !std::exchange(failsToEnd, false)) return;
    throw Poco::WriteFileException("", "walk.bin", ENOSPC);
}

void KnobsFilter::onFileName(const std::string& value) {
    note("File Name=" + value);
    failsToEnd = value == "/dev/full";
}

void KnobsFilter::onRefusing(const std::string& value) {
    if (!value.empty()) throw Poco::IOException("File not valid.");
}

void KnobsFilter::onPinsNumber() {
    note("Pins Number");
    inputs_.clear();
    for (int i = 1; i <= pinsNumber.get(); ++i)
        inputs_.push_back(
            std::make_unique<Core::InputPin<Eigen::MatrixXd>>("input#" + std::to_string(i), this));
}

void installKnobs() {
    static KnobsPlugin plugin;
    auto& plugins = Core::FlowManager::instance().getPluginManager();
    if (plugins.findFilterFactory(KnobsFilter::kClassName) == nullptr)
        plugins.installPlugin(plugin);
}

}  // namespace Quoril::Runner::Testing
