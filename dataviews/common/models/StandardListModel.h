#pragma once

#include <dataviews/common/models/ListModelInterface.h>
#include <dataviews/common/models/ModelsExport.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// A list model that keeps its entries itself.
template <class T>
class StandardListModel : public ListModelInterface<T>
{
public:
    StandardListModel() = default;
    StandardListModel(const StandardListModel&) = delete;
    StandardListModel& operator=(const StandardListModel&) = delete;
    ~StandardListModel() override = default;

    /// Removes all entries; emits signalModelChanged also if there were none.
    virtual void clear()
    {
        removeAll();
        this->emitModelChanged();
    }

    [[nodiscard]] unsigned long long size() const override { return m_displayStrings.size(); }

    [[nodiscard]] T data(unsigned long long index) const override { return at(m_values, index); }

    [[nodiscard]] std::string displayString(unsigned long long index) const override
    {
        return at(m_displayStrings, index);
    }

    /// Compares the entries one after the other.
    [[nodiscard]] std::pair<bool, unsigned long long> find(const T& value) const override
    {
        const auto place = std::find(m_values.begin(), m_values.end(), value);
        if (place == m_values.end()) {
            return {false, 0};
        }
        return {true, static_cast<unsigned long long>(place - m_values.begin())};
    }

    /// Adds an entry behind the others.
    // NOLINTNEXTLINE(readability-identifier-naming): the name of the standard containers
    void push_back(const T& value, const std::string& displayString)
    {
        append(value, displayString);
        this->emitModelChanged();
    }

    /// Puts the entries of \p other, which must be another model, in place of its own; emits signalModelChanged once.
    void copy(const ListModelInterface<T>& other)
    {
        removeAll();
        for (unsigned long long index = 0; index < other.size(); ++index) {
            append(other.data(index), other.displayString(index));
        }
        this->emitModelChanged();
    }

protected:
    /// Replaces the value of an entry, which must exist. Tells nobody: that is up to the caller.
    void setData(unsigned long long index, const T& value)
    {
        m_values[static_cast<std::size_t>(index)] = value;
    }

    /// Replaces the text of an entry, which must exist. Tells nobody: that is up to the caller.
    void setDisplayName(unsigned long long index, const std::string& name)
    {
        m_displayStrings[static_cast<std::size_t>(index)] = name;
    }

private:
    template <class Entry>
    static const Entry& at(const std::vector<Entry>& entries, unsigned long long index)
    {
        if (index >= entries.size()) {
            throw std::out_of_range("invalid vector<T> subscript");
        }
        return entries[static_cast<std::size_t>(index)];
    }

    void append(const T& value, const std::string& displayString)
    {
        m_values.push_back(value);
        m_displayStrings.push_back(displayString);
    }

    void removeAll()
    {
        m_displayStrings.clear();
        m_values.clear();
    }

    std::vector<std::string> m_displayStrings;
    std::vector<T> m_values;
};

extern template class DATAVIEWS_MODELS_EXPORT StandardListModel<std::string>;
