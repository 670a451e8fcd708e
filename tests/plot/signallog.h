#pragma once

#include "plot/qwtnox.h"

#include <QStringList>

#include <utility>

/** Writes down what a plot announces, in order, as "signal qwtIndex [channel] [value]". */
class SignalLog
{
public:
    explicit SignalLog(QwtNOX &plot)
    {
        follow(plot, &QwtNOX::onChScaleXChange, "onChScaleXChange");
        follow(plot, &QwtNOX::onChScaleYChange, "onChScaleYChange");
        follow(plot, &QwtNOX::onChColorChange, "onChColorChange");
        follow(plot, &QwtNOX::onChShowChange, "onChShowChange");
        follow(plot, &QwtNOX::onChMainChange, "onChMainChange");
        follow(plot, &QwtNOX::onChModeXChange, "onChModeXChange");
        follow(plot, &QwtNOX::onChModeChange, "onChModeChange");
        follow(plot, &QwtNOX::onModeTrackChange, "onModeTrackChange");
        follow(plot, &QwtNOX::onMeasShowChange, "onMeasShowChange");
        follow(plot, &QwtNOX::onAverShowChange, "onAverShowChange");
        follow(plot, &QwtNOX::onAddPoint, "onAddPoint");
        follow(plot, &QwtNOX::onAddCh, "onAddCh");
        follow(plot, &QwtNOX::onChange, "onChange");
        follow(plot, &QwtNOX::onDevChange, "onDevChange");
        follow(plot, &QwtNOX::onPointTrackOff, "onPointTrackOff");
        follow(plot, &QwtNOX::onErrorAddPoint, "onErrorAddPoint");
    }

    /** What was announced since the last call, as one line. */
    QString take() { return std::exchange(m_lines, {}).join(", "); }

private:
    static QString text(int number) { return QString::number(number); }
    static QString text(const QColor &color) { return color.name(); }

    template<typename... Arguments>
    void follow(QwtNOX &plot, void (QwtNOX::*signal)(Arguments...), const QString &name)
    {
        QObject::connect(&plot, signal, &m_context, [this, name](Arguments... arguments) {
            m_lines.append((QStringList(name) + ... + QStringList(text(arguments))).join(' '));
        });
    }

    QStringList m_lines;
    QObject m_context;
};
