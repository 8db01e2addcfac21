#pragma once

/**
 * A range of values from first to last, both inclusive; valid when last is not below first.
 *
 * The pair (0, 0) is a valid range of one element and at the same time what expandTo() takes for
 * "nothing yet"; callers that must tell the two apart keep a flag of their own.
 *
 * Threads  a plain value.
 */
template <typename T>
class RyRange
{
public:
    RyRange() = default;
    RyRange(const T &firstValue, const T &lastValue)
        : first(firstValue)
        , last(lastValue)
    {}
    RyRange(const RyRange &) = default;
    RyRange &operator=(const RyRange &) = default;
    virtual ~RyRange() = default;

    virtual bool operator==(const RyRange &other) const
    {
        return first == other.first && last == other.last;
    }
    virtual bool operator!=(const RyRange &other) const
    {
        return first != other.first || last != other.last;
    }

    /// Orders by first, then last; every valid range comes before every invalid one.
    virtual bool operator<(const RyRange &other) const
    {
        if (!isValid())
            return false;
        if (!other.isValid())
            return true;
        return first == other.first ? last < other.last : first < other.first;
    }

    /// Grows the range to hold value; (0, 0) counts as unset and becomes (value, value).
    virtual void expandTo(const T &value)
    {
        if (first == T(0) && last == T(0))
            first = last = value;
        else if (value > last)
            last = value;
        else if (value < first)
            first = value;
    }

    /// Half the sum of both ends; truncated toward zero for integers.
    virtual T center() const { return (first + last) / 2; }
    virtual bool isValid() const { return last >= first; }
    virtual bool contains(const T &value) const { return first <= value && value <= last; }
    virtual bool contains(const RyRange &other) const
    {
        return contains(other.first) && contains(other.last);
    }
    virtual bool intersects(const RyRange &other) const
    {
        return contains(other.first) || contains(other.last) || other.contains(first) ||
               other.contains(last);
    }

    T first{};
    T last{};
};
