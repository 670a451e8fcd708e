#pragma once

#include "plot/series.h"

/** Number of points that a moving average looks back over. */
constexpr int averagingWindow = 10;

/**
 * The moving averages of a series: after each value the mean of the last ten, of all of them while
 * there are fewer.
 *
 * An average is not stored; reading one adds up its values. So it knows nothing of what has left
 * the window, and its error is at most 10 * 2^-53 of the mean of the magnitudes. Minimum and
 * maximum are kept per block as in the series itself. Copies are as cheap.
 */
class MovingAverages
{
public:
    /** Averages `values`: call it whenever they have grown or have become others. */
    void follow(const Series &values);

    int size() const { return m_values.size(); }
    bool isEmpty() const { return m_values.isEmpty(); }
    /** The average after the value at `index`, which must exist. */
    double operator[](int index) const
    {
        return sum(index) / (index < averagingWindow ? index + 1 : averagingWindow);
    }
    double at(int index) const { return (*this)[index]; }
    /** The newest average; there must be one. */
    double last() const { return (*this)[size() - 1]; }

    /** Sum of the values that the average at `index` is the mean of. */
    double sum(int index) const;

    bool continues(const MovingAverages &earlier) const
    {
        return m_values.continues(earlier.m_values);
    }

    /** Range of the averages from `first` to before `end`; places that do not exist are left out.
     */
    ValueRange range(int first, int end) const;
    /** The same with the last of them; there must be one. */
    Stretch stretch(int first, int end) const;
    /** Fetches all that range() reads of the same stretch, which is not empty. */
    [[gnu::always_inline]] void prefetchRange(int first, int end) const
    {
        m_values.prefetchEnds(first, end);
        if (m_pyramid)
            m_pyramid->prefetchRange(first, end);
    }

private:
    ValueRange singles(int first, int end) const;
    Stretch few(int first, int end) const;

    Series m_values;
    std::shared_ptr<MinMaxPyramid> m_pyramid; ///< null until the first block is full
};
