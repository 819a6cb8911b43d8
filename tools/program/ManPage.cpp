#include "tools/program/ManPage.hpp"

#include <Poco/String.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

/// Characters that the language knows otherwise.
std::string escaped(const std::string& text) {
    std::string result;
    bool isLineStart = true;
    for (const char letter : text) {
        if (isLineStart && (letter == '.' || letter == '\'')) result += "\\&";
        if (letter == '\\') {
            result += "\\e";
        } else if (letter == '-') {
            result += "\\-";
        } else {
            result += letter;
        }
        isLineStart = letter == '\n';
    }
    return result;
}

/// "sensorfile-cut", as the page is called.
std::string pageName(const VerbEntry& verb) {
    return Poco::replace(verb.name, " ", "-");
}

void appendSection(std::string& page, const std::string& title, const std::string& text) {
    if (!text.empty()) page += ".SH " + title + "\n" + text;
}

std::string optionsOf(const VerbEntry& verb) {
    std::string text;
    for (const OptionEntry& option : verb.options)
        text += fmt::format(".TP\n.B {}\n{}\n", escaped(option.getTitle()), escaped(option.help));
    return text;
}

/// A verb below has no page of its own.
std::string verbsOf(const VerbEntry& verb, bool haveOwnPages) {
    std::string text;
    for (const VerbEntry& below : verb.verbs) {
        text += fmt::format(".TP\n.B {}\n{}\n", escaped(below.getUsage()), escaped(below.summary));
        if (!haveOwnPages && !below.options.empty()) text += ".RS\n" + optionsOf(below) + ".RE\n";
    }
    return text;
}

std::string otherPages(const VerbEntry& verb, const VerbEntry& program) {
    std::string text;
    if (verb.name != program.name) return fmt::format(".BR {} (1)\n", escaped(pageName(program)));
    for (const VerbEntry& below : program.verbs)
        text += fmt::format(".BR {} (1){}\n", escaped(pageName(below)),
                            &below == &program.verbs.back() ? "" : ",");
    return text;
}

}  // namespace

std::string manPage(const VerbEntry& verb, const VerbEntry& program) {
    const bool isProgram = verb.name == program.name;
    std::string page = fmt::format(".TH {} 1\n", Poco::toUpper(escaped(pageName(verb))));
    appendSection(page, "NAME",
                  fmt::format("{} \\- {}\n", escaped(pageName(verb)), escaped(verb.summary)));
    appendSection(page, "SYNOPSIS", fmt::format(".B {}\n", escaped(verb.getUsage())));
    appendSection(page, "OPTIONS", optionsOf(verb));
    appendSection(page, "VERBS", verbsOf(verb, isProgram));
    appendSection(page, "NOTES", verb.footer.empty() ? "" : escaped(verb.footer) + "\n");
    appendSection(page, "SEE ALSO", otherPages(verb, program));
    return page;
}

}  // namespace SensorFileTool
