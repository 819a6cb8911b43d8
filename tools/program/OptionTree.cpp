#include "tools/program/OptionTree.hpp"

#include <algorithm>
#include <sstream>

#include <CLI/App.hpp>
#include <Poco/StringTokenizer.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kLineWidth = 80;
constexpr std::size_t kTitleWidth = 26;

/// Without what is added to a value's name: how it is checked.
std::string withoutChecks(const std::string& value) {
    std::size_t end = value.size();
    for (const char* check : {":{", ":POSITIVE", ":NONNEGATIVE"})
        end = std::min(end, value.find(check));
    return value.substr(0, end);
}

OptionEntry describeOption(const CLI::Option& option) {
    OptionEntry entry;
    entry.isArgument = option.get_positional();
    entry.isRequired = option.get_required();
    entry.help = option.get_description();
    entry.isRepeatable = option.get_items_expected_max() > 1;
    if (option.get_type_size() > 0) entry.value = withoutChecks(option.get_type_name());
    if (entry.value.find('|') != std::string::npos) {
        const Poco::StringTokenizer choices(entry.value, "|");
        entry.choices.assign(choices.begin(), choices.end());
    }
    if (entry.isArgument) {
        entry.names.push_back(option.get_name(true));
        entry.value.clear();
    }
    for (const std::string& name : option.get_snames())
        entry.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        entry.names.push_back("--" + name);
    return entry;
}

void appendEntry(std::string& text, const std::string& title, const std::string& help) {
    const std::string indent(kTitleWidth, ' ');
    text += "  " + title;
    bool isFirst = title.size() + 4 <= kTitleWidth;
    if (isFirst) text.append(kTitleWidth - title.size() - 2, ' ');
    if (!isFirst) text += '\n';
    for (const std::string& line : wrapText(help, kLineWidth - kTitleWidth)) {
        if (!isFirst) text += indent;
        text += line + '\n';
        isFirst = false;
    }
}

void appendOptions(std::string& text, const VerbEntry& verb, bool areArguments) {
    for (const OptionEntry& option : verb.options)
        if (option.isArgument == areArguments) appendEntry(text, option.getTitle(), option.help);
}

}  // namespace

std::string OptionEntry::getTitle() const {
    std::string title;
    for (const std::string& name : names)
        title += (title.empty() ? "" : ", ") + name;
    if (!value.empty()) title += " " + value;
    if (isArgument && isRepeatable) title += "...";
    return title;
}

std::string VerbEntry::getWord() const {
    return name.substr(name.rfind(' ') + 1);
}

std::string VerbEntry::getUsage() const {
    std::string usage = name + " [OPTION...]";
    for (const OptionEntry& option : options) {
        if (!option.isArgument && option.isRequired)
            usage += " " + option.getTitle().substr(option.getTitle().rfind("--"));
        if (!option.isArgument) continue;
        usage += option.isRequired ? " " + option.getTitle() : " [" + option.getTitle() + "]";
    }
    if (!verbs.empty())
        usage += options.size() > 1 && options.front().isArgument ? " | VERB ..." : " VERB ...";
    return usage;
}

VerbEntry describeOptions(const CLI::App& app) {
    VerbEntry verb;
    verb.name = app.get_name();
    for (const CLI::App* above = app.get_parent(); above != nullptr; above = above->get_parent())
        verb.name = above->get_name() + " " + verb.name;
    verb.summary = app.get_description();
    verb.footer = app.get_footer();
    for (const CLI::Option* option : app.get_options())
        verb.options.push_back(describeOption(*option));
    std::stable_partition(verb.options.begin(), verb.options.end(),
                          [](const OptionEntry& option) { return option.isArgument; });
    for (const CLI::App* below : app.get_subcommands(nullptr))
        verb.verbs.push_back(describeOptions(*below));
    return verb;
}

std::string helpText(const VerbEntry& verb) {
    std::string text = "Usage: " + verb.getUsage() + "\n\n";
    for (const std::string& line : wrapText(verb.summary, kLineWidth))
        text += line + '\n';
    const bool hasArguments = !verb.options.empty() && verb.options.front().isArgument;
    if (hasArguments) text += '\n';
    appendOptions(text, verb, true);
    text += "\nOptions:\n";
    appendOptions(text, verb, false);
    if (!verb.verbs.empty()) text += "\nVerbs:\n";
    for (const VerbEntry& below : verb.verbs)
        appendEntry(text, below.getWord(), below.summary);
    if (!verb.footer.empty()) text += '\n';
    for (const std::string& line : wrapText(verb.footer, kLineWidth))
        text += line + '\n';
    return text;
}

std::vector<std::string> wrapText(const std::string& text, std::size_t width) {
    std::vector<std::string> lines;
    std::istringstream paragraphs(text);
    for (std::string paragraph; std::getline(paragraphs, paragraph);) {
        std::string line;
        std::istringstream words(paragraph);
        for (std::string word; words >> word;) {
            if (!line.empty() && line.size() + 1 + word.size() > width) {
                lines.push_back(line);
                line.clear();
            }
            line += (line.empty() ? "" : " ") + word;
        }
        lines.push_back(line);
    }
    return lines;
}

}  // namespace SensorFileTool
