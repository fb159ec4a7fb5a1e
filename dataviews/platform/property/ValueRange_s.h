#pragma once

/// A range of values with both ends in it.
template <class T>
struct ValueRange_s
{
    T min;
    T max;
};

/// Exact comparison of both ends: a range that holds a NaN equals nothing, not even itself.
template <class T>
bool operator==(const ValueRange_s<T>& left, const ValueRange_s<T>& right)
{
    return left.min == right.min && left.max == right.max;
}

template <class T>
bool operator!=(const ValueRange_s<T>& left, const ValueRange_s<T>& right)
{
    return !(left == right);
}

namespace corvane {

using ::ValueRange_s;

} // namespace corvane
