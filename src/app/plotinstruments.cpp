#include "app/plotinstruments.h"

#include "plot/qwtnox.h"
#include "registry/noxlist.h"

namespace
{

constexpr char channelProperty[] = "ch";
constexpr char indexProperty[] = "index";

uchar channelOf(const QObject *object)
{
    return uchar(object->property(channelProperty).toUInt());
}

int indexOf(const QObject *object)
{
    return object->property(indexProperty).toInt();
}

void setReference(QObject *object, uchar ch, int qwtIndex)
{
    object->setProperty(channelProperty, ch);
    object->setProperty(indexProperty, qwtIndex);
}

} // namespace

int freePlotIndex(const QList<int> &used)
{
    constexpr int mostInstruments = 255;
    if (used.size() >= mostInstruments)
        return -1;
    int index = 0;
    while (used.contains(index))
        ++index;
    return index;
}

int attachToPlot(QwtNOX *plot, uchar channelCount)
{
    const int qwtIndex = freePlotIndex(plot->devices().keys());
    if (qwtIndex < 0)
        return -1;
    plot->attachDev(qwtIndex, channelCount);
    return qwtIndex;
}

optionsNOX8 *imageOnPlot(const noxList &registry, int qwtIndex)
{
    const noxList::_nox *nox = qwtIndex < 0 ? nullptr : registry.getNoxByQwtIndex(qwtIndex);
    return nox ? nox->opt.get() : nullptr;
}

ClearMenu::ClearMenu(const noxList *registry, QWidget *parent)
    : QMenu(parent)
    , m_registry(registry)
{
    connect(this, &QMenu::aboutToShow, this, &ClearMenu::refill);
    connect(this, &QMenu::triggered, this,
            [this](QAction *action) { emit chosen(action->data().toInt()); });
}

void ClearMenu::refill()
{
    clear();
    addInstrument(tr("Все приборы"), -1);
    addSeparator();
    const auto indices = m_registry->indices();
    for (const int index : indices) {
        const noxList::_nox *nox = m_registry->getNoxByIndex(index);
        addInstrument(nox->opt->getDevTitle(), nox->qwtIndex);
    }
}

void ClearMenu::addInstrument(const QString &title, int qwtIndex)
{
    addAction(title)->setData(qwtIndex);
}

DifferenceMenu::DifferenceMenu(QwtNOX *plot, const noxList *registry, QWidget *parent)
    : QMenu(parent)
    , m_plot(plot)
    , m_registry(registry)
{
    setReference(this, noChannel, noInstrument);
    connect(this, &QMenu::aboutToShow, this, &DifferenceMenu::refill);
    connect(this, &QMenu::triggered, this, &DifferenceMenu::choose);
}

void DifferenceMenu::openFor(int qwtIndex, uchar ch, const QPoint &position)
{
    setReference(this, ch, qwtIndex);
    popup(position);
}

void DifferenceMenu::refill()
{
    clear();
    qDeleteAll(findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly));
    m_offered.clear();
    addReference(this, tr("Выкл."), noChannel, noInstrument);
    addSeparator();
    const auto indices = m_plot->devices().keys();
    for (const int qwtIndex : indices)
        addInstrument(qwtIndex);
}

void DifferenceMenu::addInstrument(int qwtIndex)
{
    optionsNOX8 *image = imageOnPlot(*m_registry, qwtIndex);
    if (!image)
        return;
    m_offered.insert(qwtIndex, image);
    QMenu *menu = addMenu(image->getDevTitle());
    const int channels = m_plot->getChCount(qwtIndex);
    for (int ch = 0; ch < channels; ++ch)
        if (qwtIndex != indexOf(this) || ch != channelOf(this))
            addReference(menu, tr("Канал № %1").arg(ch + 1), uchar(ch), qwtIndex);
}

void DifferenceMenu::addReference(QMenu *menu, const QString &title, uchar ch, int qwtIndex)
{
    uchar currentChannel = noChannel;
    int currentIndex = noInstrument;
    m_plot->getChDiff(&currentChannel, &currentIndex, indexOf(this), channelOf(this));
    QAction *entry = menu->addAction(title);
    setReference(entry, ch, qwtIndex);
    entry->setCheckable(true);
    entry->setChecked(ch == currentChannel && qwtIndex == currentIndex);
}

/** An instrument may have left while the menu was open, and another one have taken its place. */
bool DifferenceMenu::isStillThere(int qwtIndex) const
{
    const QPointer<optionsNOX8> image = m_offered.value(qwtIndex);
    return image && imageOnPlot(*m_registry, qwtIndex) == image;
}

void DifferenceMenu::choose(const QAction *reference)
{
    const int qwtIndex = indexOf(reference);
    if (!isStillThere(indexOf(this)) || (qwtIndex >= 0 && !isStillThere(qwtIndex)))
        return;
    m_plot->setChDiff(channelOf(reference), qwtIndex, indexOf(this), channelOf(this));
    emit chosen();
}
