#include "tests/host/filters/Support.hpp"

#include "tests/support/TemporaryPath.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace Quoril::Core::TestKit {

ScratchFile::ScratchFile() : path_(::Support::uniqueTemporaryPath()) {}

ScratchFile::ScratchFile(std::string_view content) : ScratchFile() {
    write(content);
}

ScratchFile::~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

void ScratchFile::write(std::string_view content) const {
    std::ofstream(path_, std::ios::binary)
        .write(content.data(), static_cast<std::streamsize>(content.size()));
}

std::string ScratchFile::read() const {
    std::ifstream stream(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

Receiver::Receiver(Filter& filter, const std::string& pinName, unsigned size)
    : pin_("receiver", nullptr) {
    pin_.setBuffer({size, /*isLifo=*/false});
    AbstractOutputPin* output = filter.findOutputPin(pinName);
    if (output == nullptr) throw std::invalid_argument("no pin " + pinName);
    output->attach(pin_, /*skipNotification=*/true);
}

bool Receiver::next() {
    if (!pin_.fetch()) return false;
    sample_ = pin_.take();
    return true;
}

std::vector<double> Receiver::takeValues() {
    std::vector<double> values;
    while (next())
        values.insert(values.end(), sample().value.data(),
                      sample().value.data() + sample().value.size());
    return values;
}

std::vector<double> Receiver::takeTimes() {
    std::vector<double> times;
    while (next())
        times.push_back(sample().timeStamp);
    return times;
}

AbstractProperty& property(Filter& filter, const std::string& name) {
    AbstractProperty* found = filter.getPropertyBag()->find(name);
    if (found == nullptr) throw std::invalid_argument("no property " + name);
    return *found;
}

void trigger(Filter& filter, const std::string& name) {
    dynamic_cast<CommandProperty&>(property(filter, name)).trigger();
}

std::vector<std::string> outputNames(const Filter& filter) {
    std::vector<std::string> names;
    for (const AbstractOutputPin* pin : filter.getOutputPins())
        names.push_back(pin->getName());
    return names;
}

}  // namespace Quoril::Core::TestKit
