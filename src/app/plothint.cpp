#include "app/plothint.h"

#include "plot/qwtlabelclick.h"
#include "plot/qwtnox.h"

#include <QApplication>
#include <QFocusEvent>

QString mouseHint(TmcMode mode)
{
    switch (mode) {
    case ModeAuto:
    case ModeFollow:
        return PlotHint::tr("Щелчок — измерение, колесо — масштаб, правая кнопка с движением — "
                            "сдвиг");
    case ModeMeasure:
        return PlotHint::tr(
            "Щелчок — точка, щелчок по числу — копия, правый щелчок — убрать точки, "
            "ещё раз — к слежению");
    case ModeZoom:
        return PlotHint::tr(
            "Левая кнопка с движением — увеличить рамку, щелчок — измерение, правый "
            "щелчок — к слежению");
    case ModeScroll:
        return PlotHint::tr(
            "Правая кнопка с движением — сдвиг, колесо — масштаб, правый щелчок — к "
            "слежению");
    case ModeLimits:
        break;
    }
    return PlotHint::tr("Щелчок — предел, колесо — масштаб, правая кнопка с движением — сдвиг");
}

QString keyHint(TmcMode mode)
{
    const QString view = PlotHint::tr("стрелки — сдвиг, + и − — масштаб, Home — слежение");
    switch (mode) {
    case ModeAuto:
    case ModeFollow:
        return PlotHint::tr("Ctrl+стрелки, Enter — измерение, ") + view;
    case ModeMeasure:
        return PlotHint::tr("Ctrl+стрелки, Enter — точка, Tab — к числам, Esc — назад, ") + view;
    case ModeZoom:
        return PlotHint::tr("Ctrl+стрелки, Enter — углы рамки, Esc — назад, ") + view;
    case ModeScroll:
        return PlotHint::tr("Esc — назад, ") + view;
    case ModeLimits:
        break;
    }
    return PlotHint::tr("Ctrl+стрелки, Enter — предел, ") + view;
}

PlotHint::PlotHint(QwtNOX *plot, QWidget *parent)
    : QLabel(parent)
    , m_plot(plot)
{
    setObjectName(QStringLiteral("plotHint"));
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    plot->canvas()->installEventFilter(this);
    for (QwtLabelClick *value : plot->findChildren<QwtLabelClick *>())
        value->installEventFilter(this);
    connect(plot, &QwtNOX::onChange, this, &PlotHint::refresh);
    connect(plot, &QwtNOX::onDevChange, this, &PlotHint::refresh);
    refresh();
}

void PlotHint::refresh()
{
    const TmcMode mode = m_plot->getChMode();
    const QString hint = m_isForKeys ? keyHint(mode) : mouseHint(mode);
    if (hint == m_whole)
        return;
    m_whole = hint;
    m_plot->canvas()->setAccessibleDescription(keyHint(mode));
    setToolTip(m_whole);
    setAccessibleName(m_whole);
    elide();
}

QSize PlotHint::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

bool PlotHint::eventFilter(QObject *, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::FocusIn) {
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        showForKeys(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
    } else if (type == QEvent::KeyPress) {
        showForKeys(true);
    } else if (type == QEvent::FocusOut) {
        if (!m_plot->isAncestorOf(QApplication::focusWidget()))
            showForKeys(false);
    } else if (type == QEvent::Enter || (type == QEvent::MouseMove && event->spontaneous())) {
        showForKeys(false);
    }
    return false;
}

void PlotHint::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    elide();
}

void PlotHint::showForKeys(bool forKeys)
{
    if (forKeys == m_isForKeys)
        return;
    m_isForKeys = forKeys;
    refresh();
}

void PlotHint::elide()
{
    setText(fontMetrics().elidedText(m_whole, Qt::ElideRight, contentsRect().width()));
}
