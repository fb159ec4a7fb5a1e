#pragma once

#include <dataviews/platform/pipeline/FilterInterface.h>

#include <boost/shared_ptr.hpp>

/// What the filters of this library have in common: the variable or tag they are bound to for life,
/// the switch, and the inversion. Enabled when made.
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT FilterAbstract : public FilterInterface
{
public:
    FilterAbstract(const FilterAbstract&) = delete;
    FilterAbstract& operator=(const FilterAbstract&) = delete;
    ~FilterAbstract() override;

    [[nodiscard]] WeakPtr<Variable> variable() const override;
    [[nodiscard]] std::string tag() const override;

    [[nodiscard]] bool isEnabled() const override;
    void setEnabled(bool enabled) override;

    /// Whether the cases outside pass instead of those inside.
    [[nodiscard]] bool isInverted() const;
    void setInverted(bool inverted);

protected:
    /// \throws ExceptionBase if \p variable is not there any more.
    FilterAbstract(const WeakPtr<Variable>& variable, bool inverted);

    /// \throws ExceptionBase if \p tag is empty.
    FilterAbstract(std::string tag, bool inverted);

private:
    WeakPtr<Variable> m_variable;
    std::string m_tag;
    bool m_enabled = true;
    bool m_inverted;
};
