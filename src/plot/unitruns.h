#pragma once

#include <QString>
#include <QVector>

/** The unit text of every point of a channel, kept once per run of equal units. */
class UnitRuns
{
public:
    int size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }
    /** The unit of point `index`, which must exist. */
    QString at(int index) const;
    QString operator[](int index) const { return at(index); }

    void append(const QString &unit);
    void clear();

private:
    struct Run {
        int first; ///< index of the run's first point
        QString unit;
    };
    QVector<Run> m_runs;
    int m_size = 0;
};
