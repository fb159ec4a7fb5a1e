#pragma once

#include <dataviews/platform/selection/CaseSet.h>
#include <dataviews/platform/selection/PlatformSelectionExport.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <set>

/// A selection as listeners are told of it: in the form that each of them asks for.
///
/// A slot may take a `const std::set<unsigned long long>&` instead; the set is made when the first one does, which at a
/// million cases takes as long as painting several views. For the GUI thread.
class DATAVIEWS_PLATFORM_SELECTION_EXPORT CaseSelection
{
public:
    using SharedCases = boost::shared_ptr<const CaseSet>;

    CaseSelection();

    /// \p cases is not null.
    explicit CaseSelection(SharedCases cases);

    /// Refers to \p cases, which stay as they are as long as this lives.
    explicit CaseSelection(const std::set<unsigned long long>& cases);
    CaseSelection(const CaseSelection&) = delete;
    CaseSelection& operator=(const CaseSelection&) = delete;
    ~CaseSelection();

    /// Becomes \p cases, not null. A set that was given out becomes the new one too and stays in its place.
    void reset(SharedCases cases);

    /// Never null; shared with whoever keeps it.
    [[nodiscard]] const SharedCases& cases() const;

    [[nodiscard]] const CaseSet* operator->() const { return cases().get(); }

    [[nodiscard]] const CaseSet& operator*() const { return *cases(); }

    /// The same as a set, valid as long as this lives. Implicit, so that a slot may take either.
    operator const std::set<unsigned long long>&() const; // NOLINT(google-explicit-constructor)

private:
    mutable SharedCases m_cases; ///< null until asked for, if a set is given
    const std::set<unsigned long long>* m_given = nullptr;
    mutable std::set<unsigned long long> m_set;
    mutable bool m_hasSet = false;
};
