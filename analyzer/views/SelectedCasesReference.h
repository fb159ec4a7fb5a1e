#pragma once

#include <string>

namespace analyzer {

/// The case that selected cases are compared with.
struct SelectedCasesReference
{
    enum class Kind
    {
        None, ///< they are compared with one another
        First, ///< the first one that is shown
        Pinned ///< the one with this ID, whether it is selected or not
    };

    Kind kind = Kind::None;
    unsigned long long caseID = 0; ///< of a pinned case, else 0

    [[nodiscard]] static SelectedCasesReference pinned(unsigned long long caseID)
    {
        return {Kind::Pinned, caseID};
    }

    /// "none", "first" or "case 17".
    [[nodiscard]] std::string text() const;

    /// Whether the open study has the case; true without a pinned one.
    [[nodiscard]] bool isInStudy() const;

    /// Reads what text() writes, and a case ID alone.
    /// \throws ExceptionBase with a sentence for any other text.
    [[nodiscard]] static SelectedCasesReference fromText(const std::string& text);

    friend bool operator==(const SelectedCasesReference& left, const SelectedCasesReference& right)
    {
        return left.kind == right.kind && left.caseID == right.caseID;
    }

    friend bool operator!=(const SelectedCasesReference& left, const SelectedCasesReference& right)
    {
        return !(left == right);
    }
};

} // namespace analyzer
