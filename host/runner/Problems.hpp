#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Quoril::Runner {

/// Where a text of the user's comes from: a place in a file, or an option of the command line.
struct Place {
    std::string source;  ///< path of the file as the user named it, or the option
    int line = 0;        ///< from 1; 0: the source as a whole
    int column = 0;      ///< from 1, in bytes

    /// "flow.yaml:12:9", or the source alone.
    [[nodiscard]] std::string toText() const;
};

/// A text of the user's with its place.
struct Text {
    std::string text;
    Place place;
};

/// How bad a problem is; decides the exit code.
enum class Severity {
    kWarning,     ///< told, and ignored
    kFailure,     ///< a filter or the system refused: exit code 1
    kWrongInput,  ///< the flow file or the command line is wrong: exit code 2
};

struct Problem {
    Place place;
    std::string text;
    Severity severity = Severity::kWrongInput;
};

/// Collects what is wrong with a flow, so that the user learns of everything in one go.
class Problems {
 public:
    void add(const Place& place, const std::string& text,
             Severity severity = Severity::kWrongInput);
    void warn(const Place& place, const std::string& text);

    /// True if something other than warnings was added.
    [[nodiscard]] bool hasErrors() const noexcept;
    /// 2 if an input is wrong, else 1 if something failed, else 0.
    [[nodiscard]] int getExitCode() const noexcept;
    /// One visible line each ("place: text", warnings as "place: warning: text"), by source and
    /// place; after the first 50 only their number.
    [[nodiscard]] std::string toText() const;
    [[nodiscard]] const std::vector<Problem>& getList() const noexcept { return list_; }
    void clear() noexcept { list_.clear(); }

 private:
    std::vector<Problem> list_;
};

}  // namespace Quoril::Runner
