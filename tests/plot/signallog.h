#pragma once

#include "plot/qwtnox.h"

#include <QStringList>

/** Writes down what a plot announces, in order, as "signal qwtIndex [channel] [value]". */
class SignalLog
{
public:
    explicit SignalLog(QwtNOX &plot)
    {
        follow(plot, &QwtNOX::onChScaleXChange, "onChScaleXChange");
        follow(plot, &QwtNOX::onChScaleYChange, "onChScaleYChange");
        follow(plot, &QwtNOX::onChShowChange, "onChShowChange");
        follow(plot, &QwtNOX::onChMainChange, "onChMainChange");
        follow(plot, &QwtNOX::onChModeXChange, "onChModeXChange");
        follow(plot, &QwtNOX::onChModeChange, "onChModeChange");
        follow(plot, &QwtNOX::onMeasShowChange, "onMeasShowChange");
        follow(plot, &QwtNOX::onAverShowChange, "onAverShowChange");
        follow(plot, &QwtNOX::onAddPoint, "onAddPoint");
        follow(plot, &QwtNOX::onAddCh, "onAddCh");
        follow(plot, &QwtNOX::onChange, "onChange");
        follow(plot, &QwtNOX::onDevChange, "onDevChange");
        follow(plot, &QwtNOX::onPointTrackOff, "onPointTrackOff");
        follow(plot, &QwtNOX::onErrorAddPoint, "onErrorAddPoint");
        QObject::connect(&plot, &QwtNOX::onChColorChange, &m_context,
                         [this](int qwtIndex, uchar ch, const QColor &color) {
                             m_lines.append(QStringLiteral("onChColorChange %1 %2 %3")
                                                .arg(qwtIndex)
                                                .arg(ch)
                                                .arg(color.name()));
                         });
    }

    /** What was announced since the last call. */
    QStringList take()
    {
        const QStringList lines = m_lines;
        m_lines.clear();
        return lines;
    }

private:
    template<typename... Arguments>
    void follow(QwtNOX &plot, void (QwtNOX::*signal)(Arguments...), const char *name)
    {
        QObject::connect(&plot, signal, &m_context, [this, name](Arguments... arguments) {
            QString line = QString::fromLatin1(name);
            ((line += QLatin1Char(' ') + QString::number(static_cast<int>(arguments))), ...);
            m_lines.append(line);
        });
    }

    QStringList m_lines;
    QObject m_context;
};
