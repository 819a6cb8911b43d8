#include "framework/FileNameProperty.hpp"
#include "host/runner/PropertyText.hpp"
#include "tests/flows/EveryFilterFixture.hpp"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include <Poco/String.h>

// What users, flow files and saved flows see of the filters, kept in filter-faces.txt. When a
// change of it is wanted: QUORIL_RENEW_FACES=1 flow_tests --gtest_filter='FilterFacesTest.*', then
// read the difference.

using Quoril::Core::Filter;
using Quoril::Runner::PropertyDescription;

namespace {

std::string describe(const PropertyDescription& property) {
    std::ostringstream text;
    text << "  property \"" << property.name << "\": " << toText(property.kind);
    if (property.kind == Quoril::Runner::PropertyKind::kRange)
        text << " " << property.range->minimum << " to " << property.range->maximum << " step "
             << property.range->step;
    const char* separator = " of ";
    for (const std::string& entry : property.entries)
        text << std::exchange(separator, ", ") << entry;
    text << ", \"" << property.value << "\"";
    if (!property.isWritable) text << ", read-only";
    if (!property.isPersistent) text << ", not saved";
    return text.str();
}

/// What only file names have.
std::string describeFileName(const Quoril::Core::AbstractProperty& property) {
    const auto* file = dynamic_cast<const Quoril::Core::FileNameProperty*>(&property);
    if (file == nullptr) return {};
    return std::string(file->getIsWritten() ? ", written" : ", read") + ", filter " +
           file->getFilter() + (file->getExpandVariables() ? ", variables" : "");
}

std::string describe(const Filter& filter) {
    std::ostringstream text;
    for (const Quoril::Core::AbstractInputPin* pin : filter.getInputPins())
        text << "  input \"" << pin->getName() << "\": " << pin->getBuffer().size
             << (pin->getBuffer().isLifo ? " last in first out" : "")
             << (pin->getIsBlocking() ? " blocking" : "")
             << (pin->isBufferChosen() ? "" : " unless the host chooses") << "\n";
    for (const auto* pin : filter.getOutputPins())
        text << "  output \"" << pin->getName() << "\"\n";
    for (const std::string& name : filter.getPropertyBag()->getNames()) {
        const auto& property = *filter.getPropertyBag()->find(name);
        text << describe(Quoril::Runner::describeProperty(property)) << describeFileName(property)
             << "\n";
    }
    return text.str();
}

}  // namespace

class FilterFacesTest : public EveryFilterFixture {
 protected:
    /// The filter as it is made, as it is set up, and while it works.
    std::string describeLife(const char* className) {
        Filter& filter = flow.addFilter(className, className, layout);
        std::string text = std::string(className) + ", fresh\n" + describe(filter);
        prepare(filter);
        text += std::string(className) + ", set up\n" + describe(filter);
        switchOn(filter);
        text += std::string(className) + ", switched on\n" + describe(filter);
        return Poco::replace(text, folder.path(), std::string("FOLDER"));
    }

    Quoril::Core::LayoutManager& layout = flow.addLayout("main");
};

TEST_F(FilterFacesTest, AreAsTheyAreKnown) {
    std::string faces;
    for (const char* className : kFilterClasses)
        faces += describeLife(className);
    if (std::getenv("QUORIL_RENEW_FACES") != nullptr) std::ofstream(FACES_FILE) << faces;
    std::ifstream file(FACES_FILE);
    EXPECT_EQ(faces, std::string(std::istreambuf_iterator<char>(file), {}));
}
