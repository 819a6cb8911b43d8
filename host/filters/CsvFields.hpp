#pragma once

#include "framework/Export.hpp"
#include "host/filters/CsvSeparator.hpp"

#include <string>
#include <string_view>

namespace Quoril::Core {

/// The fields of one line, from left to right.
///
/// Blanks around a field do not belong to it. A field that begins with a quote ends at the next
/// single quote, on the same line; two quotes in it stand for one.
class QUORIL_CORE_API CsvFields {
 public:
    /// What is wrong with the present field's quotes; the line cannot be split further then.
    enum class Problem { kNone, kQuoteNotClosed, kTextAfterQuote };

    /// @param line  MUST outlive this object
    CsvFields(std::string_view line, CsvSeparator separator);

    /// Goes to the next field; false when there is none.
    [[nodiscard]] bool next();

    /// The present field without the quotes around it; doubled quotes are as they stand in the
    /// line.
    [[nodiscard]] std::string_view getText() const noexcept { return text_; }
    /// The present field with doubled quotes made one.
    [[nodiscard]] std::string getUnquotedText() const;
    [[nodiscard]] Problem getProblem() const noexcept { return problem_; }

 private:
    void takePlain();
    void takeQuoted();
    void endQuoted();
    void skipPadding();
    void passSeparator();
    [[nodiscard]] std::size_t findSeparator() const;

    const std::string_view line_;
    const CsvSeparator separator_;
    std::size_t position_ = 0;
    bool hasNext_ = true;
    bool isQuoted_ = false;
    std::string_view text_;
    Problem problem_ = Problem::kNone;
};

}  // namespace Quoril::Core
