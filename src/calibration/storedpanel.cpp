#include "calibration/storedpanel.h"

#include "calibration/characteristictable.h"
#include "storage/noxsql.h"
#include "ui_featconfui.h"

#include <QCoreApplication>
#include <QSignalBlocker>

namespace
{

struct MatchTexts {
    Q_DECLARE_TR_FUNCTIONS(StoredMatch)
};

} // namespace

StoredMatch matchStored(const std::optional<StoredCharacteristic> &before,
                        const std::optional<StoredCharacteristic> &withSameRecord)
{
    const auto &row = before ? before : withSameRecord;
    StoredMatch match;
    match.isStored = row.has_value();
    if (!row) {
        match.name = MatchTexts::tr("Новая градуировка");
        match.hint = MatchTexts::tr("Градуировка НЕ сохранена в БД");
        return match;
    }
    match.id = row->id;
    match.name = row->name;
    match.info = row->info;
    match.hint = MatchTexts::tr("Градуировка сохранена в БД");
    match.isChanged = !withSameRecord || withSameRecord->id != row->id;
    return match;
}

StoredPanel::StoredPanel(Ui::featconfui &form, noxSql *database)
    : m_form(form)
    , m_database(database)
{
    m_form.dbStatusLabel->hide();
    connect(m_form.infoText, &QPlainTextEdit::textChanged, this, &StoredPanel::showChange);
}

void StoredPanel::begin(const QByteArray &record)
{
    m_match.id = -1; // so that even no row is another one
    match(0, record);
}

void StoredPanel::match(int id, const QByteArray &record)
{
    const QSignalBlocker searchBlocker(m_form.searchEdit);
    m_form.searchEdit->clear();
    showMatch(matchStored(id > 0 ? storedCharacteristic(id) : std::nullopt,
                          storedCharacteristic(record)));
}

void StoredPanel::showMatch(const StoredMatch &match)
{
    const bool isOtherInfo = match.id != m_match.id || match.info != m_match.info;
    m_match = match;
    list({match.name}, {match.id});
    const QSignalBlocker infoBlocker(m_form.infoText);
    m_form.infoText->setPlaceholderText(match.hint); // Qt looks for it when the text changes
    if (isOtherInfo)
        m_form.infoText->setPlainText(match.info);
    m_form.infoText->setEnabled(match.isStored);
    m_form.rmDBBtn->setEnabled(match.isStored);
    showChange();
}

/** Another description is to be saved as well. */
void StoredPanel::showChange()
{
    const bool isOtherInfo = m_form.infoText->toPlainText() != m_match.info;
    const bool isChanged = m_match.isStored && (m_match.isChanged || isOtherInfo);
    m_form.dbStatusLabel->setVisible(isChanged);
    m_form.saveDBBtn->setEnabled(isChanged);
}

void StoredPanel::list(const QStringList &names, const QVector<int> &ids)
{
    const QSignalBlocker blocker(m_form.dbFindCB);
    m_form.dbFindCB->clear();
    for (int i = 0; i < names.size(); ++i)
        m_form.dbFindCB->addItem(names.at(i), ids.value(i));
}

void StoredPanel::search(const QString &text)
{
    constexpr int fewestCharacters = 3;
    if (!m_database)
        return;
    if (text.size() < fewestCharacters)
        return list({tr("Введите не менее 3-х символов")}, {});
    list({tr("Идёт поиск...")}, {});
    m_form.dbFindCB->repaint();

    const auto found = m_database->findFeature(text);
    QStringList names(tr("Найдено: ") + QString::number(found.size()));
    QVector<int> ids = {0};
    for (const noxSql::noxSqlItem &item : found) {
        names << item.name;
        ids << item.id;
    }
    list(names, ids);
}

int StoredPanel::chosenId() const
{
    return m_database ? m_form.dbFindCB->currentData().toInt() : 0;
}

bool StoredPanel::isShown(int id, const QByteArray &record, const WorkingCopy &copy) const
{
    return id == m_match.id && record == copy.record() && m_form.searchEdit->text().isEmpty();
}

bool StoredPanel::save(const WorkingCopy &copy)
{
    if (!m_database)
        return false;
    return showStored(m_database->setFeature(&copy.record(), copy.feature().name,
                                             m_form.infoText->toPlainText(), m_match.id),
                      copy);
}

bool StoredPanel::add(const WorkingCopy &copy)
{
    if (!m_database)
        return false;
    return showStored(
        m_database->addFeature(&copy.record(), copy.feature().name, m_form.infoText->toPlainText()),
        copy);
}

/** What could not be stored still belongs to its row. */
bool StoredPanel::showStored(int id, const WorkingCopy &copy)
{
    match(id > 0 ? id : m_match.id, copy.record());
    return id > 0;
}
