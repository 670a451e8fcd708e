#include "dialogs/snapshotbox.h"

#include "calibration/characteristicmessages.h"
#include "device/featurenox8.h"
#include "device/instrumentblocks.h"
#include "storage/storeditems.h"
#include "ui_devconfui.h"
#include "widgets/userdialogs.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(SnapshotMatch)
};

constexpr int shortestSearch = 3; ///< characters

} // namespace

SnapshotMatch matchSnapshot(const std::optional<noxSql::noxSqlItem> &named,
                            const QVector<noxSql::noxSqlItem> &equal)
{
    SnapshotMatch match;
    if (!named && equal.isEmpty()) {
        match.name = Texts::tr("Новая настройка");
        match.hint = Texts::tr("Настройка НЕ найдена в БД");
        return match;
    }
    const noxSql::noxSqlItem snapshot = named ? *named : equal.first();
    const bool isEqual = !equal.isEmpty() && equal.first().id == snapshot.id;
    match.id = snapshot.id;
    match.name = snapshot.name;
    match.info = snapshot.info;
    match.hint = Texts::tr("Настройка найдена в БД");
    match.isFound = true;
    match.isChanged = !isEqual;
    match.canBeSaved = !isEqual && !snapshot.factory;
    match.canBeRemoved = !snapshot.factory;
    return match;
}

SnapshotBox::SnapshotBox(Ui::devConfUI &form, noxList *registry)
    : m_form(form)
    , m_registry(registry)
{
    connect(m_form.infoText, &QPlainTextEdit::textChanged, this, &SnapshotBox::noteDescription);
}

void SnapshotBox::setIndex(int index)
{
    m_index = index;
    m_match = {};
    m_offersResults = false;
    m_form.infoText->document()->setModified(false);
    const QSignalBlocker blocker(m_form.dbSearchEdit);
    m_form.dbSearchEdit->clear();
}

// Which snapshot the configuration has

void SnapshotBox::match()
{
    noxList::_nox *const nox = record();
    if (!nox)
        return;
    const auto named = nox->snapShotId >= 1 ? storedSnapshot(nox->snapShotId) : std::nullopt;
    const QByteArray data = taken(nox->opt->getData());
    const QByteArray references = taken(nox->opt->getRefAllData());
    const SnapshotMatch match = matchSnapshot(
        named, m_registry->database()->findSnapShot(&data, &references, nox->dbIndex));
    nox->snapShotId = match.id;
    paint(match);
}

void SnapshotBox::paint(const SnapshotMatch &match)
{
    if (!m_offersResults) {
        const QSignalBlocker blocker(m_form.dbFindCB);
        m_form.dbFindCB->clear();
        offer(match.name, match.id);
    }
    m_form.dbStatusLabel->setVisible(match.isChanged);
    m_form.saveDBBtn->setEnabled(match.canBeSaved);
    m_form.rmDBBtn->setEnabled(match.canBeRemoved);
    paintInfo(match);
    m_match = match;
    noteDescription();
}

void SnapshotBox::paintInfo(const SnapshotMatch &match)
{
    QPlainTextEdit *const info = m_form.infoText;
    info->setEnabled(match.isFound);
    info->setPlaceholderText(match.hint);
    const bool isBeingWritten = info->document()->isModified() && match.id == m_match.id;
    if (isBeingWritten || info->toPlainText() == match.info)
        return;
    const QSignalBlocker blocker(info);
    info->setPlainText(match.info);
}

/** A description alone can be saved as well. */
void SnapshotBox::noteDescription()
{
    const bool isDescribed = m_match.canBeRemoved && m_form.infoText->document()->isModified() &&
                             m_form.infoText->toPlainText() != m_match.info;
    m_form.saveDBBtn->setEnabled(m_match.canBeSaved || isDescribed);
}

void SnapshotBox::offer(const QString &text, const QVariant &data)
{
    m_form.dbFindCB->addItem(text, data);
    m_form.dbFindCB->setItemData(m_form.dbFindCB->count() - 1, text, Qt::ToolTipRole);
}

// Search

void SnapshotBox::search(const QString &text)
{
    if (!record())
        return;
    m_offersResults = !text.isEmpty();
    if (!m_offersResults)
        return match();
    const QSignalBlocker blocker(m_form.dbFindCB);
    m_form.dbFindCB->clear();
    if (text.size() < shortestSearch)
        return offer(tr("Введите не менее 3-х символов"), {});
    offer(tr("Идёт поиск..."), 0);
    const auto found = searchSnapshots(text);
    m_form.dbFindCB->clear();
    offer(tr("Найдено: ") + QString::number(found.size()), 0);
    for (const noxSql::noxSqlItem &snapshot : found)
        offer(snapshot.name, snapshot.id);
}

void SnapshotBox::choose()
{
    const int id = m_form.dbFindCB->currentData().toInt();
    if (!record() || id < 1 || id == m_justChosen)
        return;
    m_justChosen = id;
    QTimer::singleShot(0, this, [this] { m_justChosen = 0; });
    apply(id);
}

/** Each block is announced, and whoever hears of it may remove the instrument. */
void SnapshotBox::apply(int snapshotId)
{
    const auto content = snapshotContent(snapshotId);
    noxList::_nox *nox = record();
    if (!content)
        return;
    const QPointer<optionsNOX8> image = nox->opt.get();
    const QByteArray references = content->references.left(referenceDataSize);
    if (image->devType == 0)
        image->setData(references, referenceDataAddress); // which may tell the model
    nox = m_registry->getNoxByImage(image);
    if (!nox)
        return;
    const int formerId = std::exchange(nox->snapShotId, snapshotId);
    m_offersResults = false;
    m_form.infoText->document()->setModified(false);
    if (!image->setData(content->configuration, configurationAddress)) {
        nox->snapShotId = formerId;
        match();
        return tellUnsuited(image->devType != 0);
    }
    if (image)
        image->setData(references, referenceDataAddress);
    if (image && image->getDevRev() != 0)
        image->setData(content->references.mid(referenceDataSize), zeroShiftsAddress);
    match(); // what was matched meanwhile had not all blocks yet
}

void SnapshotBox::tellUnsuited(bool isModelKnown)
{
    QWidget *const dialog = m_form.dbFindCB->window();
    const QString text = isModelKnown
                             ? tr("Эта настройка не подходит прибору: у него другое число каналов.")
                             : tr("Настройку нельзя применить: тип прибора не известен.");
    UserDialogs::current().tell(
        dialog, {QMessageBox::Warning, dialog->windowTitle(), text, QMessageBox::Ok});
}

// What is stored

bool storeSnapshot(noxSql &database, noxList::_nox &nox, const QString &info, int snapshotId)
{
    const QByteArray data = taken(nox.opt->getData());
    const QByteArray references = taken(nox.opt->getRefAllData());
    const int stored = database.setSnapShot(nox.dbIndex, &data, &references, info, snapshotId);
    if (stored >= 1)
        nox.snapShotId = stored;
    return stored >= 1;
}

void SnapshotBox::saveAsNew()
{
    const noxList::_nox *const nox = record();
    if (nox && nox->dbIndex >= 1)
        store(0);
}

void SnapshotBox::save()
{
    const noxList::_nox *const nox = record();
    if (nox && nox->snapShotId >= 1)
        store(nox->snapShotId);
}

void SnapshotBox::store(int snapshotId)
{
    const QString info = m_form.infoText->toPlainText();
    if (storeSnapshot(*m_registry->database(), *record(), info, snapshotId))
        m_form.infoText->document()->setModified(false);
    m_offersResults = false;
    match();
}

/** Asks whether something is to be removed; the widgets may be gone by the time of the answer. */
bool SnapshotBox::isRemovalWanted() const
{
    QWidget *const dialog = m_form.dbFindCB->window();
    const Message question = removalQuestion(dialog->windowTitle());
    return UserDialogs::current().ask(dialog, question) == QMessageBox::Yes;
}

void SnapshotBox::remove()
{
    const int index = m_index;
    const noxList::_nox *nox = record();
    if (!nox || nox->snapShotId < 1)
        return;
    const int snapshotId = nox->snapShotId;
    const QPointer<SnapshotBox> self(this);
    if (!isRemovalWanted() || !self)
        return;
    removeSnapshot(snapshotId);
    noxList::_nox *const asked = m_registry->getNoxByIndex(index);
    if (asked && asked->snapShotId == snapshotId)
        asked->snapShotId = 0;
    m_offersResults = false;
    match();
}

void SnapshotBox::removeInstrument()
{
    const noxList::_nox *const asked = record();
    if (!asked)
        return;
    const QPointer<optionsNOX8> image = asked->opt.get();
    const QPointer<SnapshotBox> self(this);
    if (!isRemovalWanted() || !self)
        return;
    noxList::_nox *nox = m_registry->getNoxByImage(image);
    if (!nox || nox->dbIndex < 0 || !m_registry->database()->removeDev(nox->dbIndex) || !self)
        return;
    nox = m_registry->getNoxByImage(image); // a receiver of the removal may have removed it
    if (!nox)
        return;
    nox->dbIndex = -1;
    emit instrumentRemoved(nox->index);
}
