#include "tools/program/CompletionScript.hpp"

#include <functional>
#include <vector>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

/// For a string in single quotes, which no shell looks into.
std::string quoted(std::string text) {
    for (std::size_t i = text.find('\''); i != std::string::npos; i = text.find('\'', i + 4))
        text.replace(i, 1, "'\\''");
    return "'" + text + "'";
}

std::string join(const std::vector<std::string>& words, const char* between) {
    return fmt::format("{}", fmt::join(words, between));
}

std::vector<std::string> namesOf(const VerbEntry& verb) {
    std::vector<std::string> words;
    for (const VerbEntry& below : verb.verbs)
        words.push_back(below.getWord());
    return words;
}

/// The words that may stand behind a verb.
std::vector<std::string> wordsOf(const VerbEntry& verb) {
    std::vector<std::string> words = namesOf(verb);
    for (const OptionEntry& option : verb.options)
        if (!option.isArgument) words.insert(words.end(), option.names.begin(), option.names.end());
    for (const OptionEntry& option : verb.options)
        if (option.isArgument)
            words.insert(words.end(), option.choices.begin(), option.choices.end());
    return words;
}

void forEachVerb(const VerbEntry& verb, const std::function<void(const VerbEntry&)>& call) {
    call(verb);
    for (const VerbEntry& below : verb.verbs)
        forEachVerb(below, call);
}

/// The name without the program's: "" or "calib extract".
std::string pathOf(const VerbEntry& verb) {
    const std::size_t blank = verb.name.find(' ');
    return blank == std::string::npos ? "" : verb.name.substr(blank + 1);
}

std::string bashCases(const VerbEntry& program) {
    std::string cases;
    forEachVerb(program, [&](const VerbEntry& verb) {
        for (const OptionEntry& option : verb.options)
            if (!option.isArgument && !option.choices.empty())
                for (const std::string& name : option.names)
                    cases +=
                        fmt::format("        {}) words={} ;;\n", quoted(pathOf(verb) + " " + name),
                                    quoted(join(option.choices, " ")));
    });
    return cases;
}

std::string bashVerbs(const VerbEntry& program) {
    std::string cases;
    forEachVerb(program, [&](const VerbEntry& verb) {
        cases += fmt::format("        {}) words={} ;;\n", quoted(pathOf(verb)),
                             quoted(join(wordsOf(verb), " ")));
    });
    return cases;
}

std::string bashPaths(const VerbEntry& program) {
    std::string paths;
    forEachVerb(program, [&](const VerbEntry& verb) {
        if (!pathOf(verb).empty()) paths += (paths.empty() ? "" : " | ") + quoted(pathOf(verb));
    });
    return paths;
}

/// Text within brackets and behind a colon of _arguments.
std::string zshEscaped(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        if (letter == '[' || letter == ']' || letter == ':' || letter == '\\') escaped += '\\';
        escaped += letter;
    }
    return escaped;
}

std::string zshAction(const OptionEntry& option) {
    return option.choices.empty() ? "_files" : "(" + join(option.choices, " ") + ")";
}

std::string zshOption(const OptionEntry& option) {
    if (option.isArgument)
        return quoted(fmt::format("{}:{}:{}", option.isRepeatable ? "*" : "",
                                  zshEscaped(option.names.front()), zshAction(option)));
    std::string all;
    for (const std::string& name : option.names) {
        std::string one =
            (option.isRepeatable ? "*" : "") + name + "[" + zshEscaped(option.help) + "]";
        if (!option.value.empty()) one += ":" + zshEscaped(option.value) + ":" + zshAction(option);
        all += (all.empty() ? "" : " ") + quoted(one);
    }
    return all;
}

std::string zshFunctionOf(const VerbEntry& verb) {
    std::string name = "_" + verb.name;
    for (char& letter : name)
        if (letter == ' ') letter = '_';
    return name;
}

std::string zshFunction(const VerbEntry& verb) {
    std::string text = zshFunctionOf(verb) + "() {\n";
    std::string arguments;
    for (const OptionEntry& option : verb.options)
        if (verb.verbs.empty() || !option.isArgument)
            arguments += " \\\n        " + zshOption(option);
    if (verb.verbs.empty()) return text + "    _arguments" + arguments + "\n}\n";
    text += "    local line state\n    _arguments -C" + arguments +
            " \\\n        '1: :->verb' '*::argument:->rest'\n    case $state in\n    verb)\n"
            "        local -a verbs=(\n";
    for (const VerbEntry& below : verb.verbs)
        text += "            " + quoted(below.getWord() + ":" + zshEscaped(below.summary)) + "\n";
    text +=
        "        )\n        _describe verb verbs\n        _files ;;\n    rest)\n"
        "        case $line[1] in\n";
    for (const VerbEntry& below : verb.verbs)
        text += fmt::format("        {}) {} ;;\n", below.getWord(), zshFunctionOf(below));
    return text + "        esac ;;\n    esac\n}\n";
}

std::string fishCondition(const VerbEntry& verb) {
    const std::string path = pathOf(verb);
    if (path.empty()) return "__fish_use_subcommand";
    std::string condition;
    for (std::size_t first = 0; first < path.size();) {
        const std::size_t end = std::min(path.find(' ', first), path.size());
        condition += (condition.empty() ? "" : "; and ") +
                     ("__fish_seen_subcommand_from " + path.substr(first, end - first));
        first = end + 1;
    }
    return condition;
}

std::string fishOption(const OptionEntry& option) {
    std::string text;
    for (const std::string& name : option.names)
        text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!option.value.empty()) text += " -r";
    if (!option.choices.empty()) text += " -f -a " + quoted(join(option.choices, " "));
    return text + " -d " + quoted(option.help);
}

}  // namespace

std::string bashCompletion(const VerbEntry& program) {
    return fmt::format(R"(# bash completion for {0}
_{0}() {{
    local current=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD-1]}}
    local verb='' words='' i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case "${{verb:+$verb }}${{COMP_WORDS[i]}}" in
        {1}) verb="${{verb:+$verb }}${{COMP_WORDS[i]}}" ;;
        esac
    done
    case "$verb $before" in
{2}        *)
        case "$verb" in
{3}        esac ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}}
complete -o default -o bashdefault -F _{0} {0}
)",
                       program.name, bashPaths(program), bashCases(program), bashVerbs(program));
}

std::string zshCompletion(const VerbEntry& program) {
    std::string text = "#compdef " + program.name + "\n";
    forEachVerb(program, [&](const VerbEntry& verb) { text += zshFunction(verb); });
    return text + "_" + program.name + " \"$@\"\n";
}

std::string fishCompletion(const VerbEntry& program) {
    std::string text = "# fish completion for " + program.name + "\n";
    forEachVerb(program, [&](const VerbEntry& verb) {
        const std::string start =
            "complete -c " + program.name + " -n " + quoted(fishCondition(verb));
        for (const VerbEntry& below : verb.verbs)
            text += start + " -a " + below.getWord() + " -d " + quoted(below.summary) + "\n";
        for (const OptionEntry& option : verb.options)
            if (!option.isArgument)
                text += start + fishOption(option) + "\n";
            else if (!option.choices.empty())
                text += start + " -f -a " + quoted(join(option.choices, " ")) + "\n";
    });
    return text;
}

}  // namespace SensorFileTool
