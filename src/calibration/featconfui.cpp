#include "calibration/featconfui.h"

#include "calibration/characteristicfile.h"
#include "calibration/characteristicmessages.h"
#include "calibration/storedpanel.h"
#include "calibration/tpreperui.h"
#include "device/featurenox8.h"
#include "ui_featconfui.h"
#include "widgets/accessiblerole.h"

#include <QEvent>
#include <QKeyEvent>
#include <QSignalBlocker>

featconfui::featconfui(QWidget *parent, noxSql *database)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::featconfui>())
    , m_database(database)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    const QSignalBlocker typeBlocker(m_ui->featType);
    m_ui->featType->addItems(featureNOX8().getFeatureTypeStr());
    m_ui->featType->installEventFilter(this);
    m_ui->dbFindCB->installEventFilter(this);
    sayName(m_ui->dbFindCB);
    m_stored = std::make_unique<StoredPanel>(*m_ui, database);
    m_recalculation = new tpReperUI(this);
    connect(m_ui->ratioTable, &RatioTable::edited, this, [this] { setFeature(false); });
}

featconfui::~featconfui()
{
    m_ui->ratioTable->disconnect(this); // going, it still ends an edit
}

bool featconfui::show(featureNOX8 *feature)
{
    if (!feature || m_copy)
        return false;
    begin(feature);
    const QPointer<featconfui> self(this);
    const bool isApplied = exec() == Accepted;
    if (!self)
        return false;
    end();
    return isApplied;
}

void featconfui::begin(featureNOX8 *feature)
{
    m_edited = feature;
    m_copy = std::make_unique<WorkingCopy>();
    m_copy->load(encodeFeature(*feature));
    notice({});
    m_ui->pushButton->setEnabled(true);
    m_stored->begin(m_copy->record());
    showCopy();
    m_ui->featName->setFocus();
    connect(feature, &QObject::destroyed, this, &featconfui::noticeLoss);
    connect(feature, &featureNOX8::onChange, this, [this] {
        notice(tr("Градуировка прочитана из прибора заново; введённое здесь не изменилось"));
    });
}

void featconfui::end()
{
    if (m_edited)
        m_edited->disconnect(this);
    m_edited.clear();
    m_copy.reset();
}

// Table and copy

int featconfui::selectedType() const
{
    const int index = m_ui->featType->currentIndex();
    return index < 0 ? m_copy->feature().type : index; // an unknown type has no item
}

CharacteristicEntry featconfui::entry() const
{
    const int type = selectedType();
    return {type, m_ui->featName->text(),
            enteredValues(characteristicLayout(type), m_ui->ratioTable->texts())};
}

bool featconfui::setFeature(bool strict)
{
    if (!m_copy)
        return !strict;
    const CharacteristicEntry entered = entry();
    const QByteArray before = m_copy->record();
    const bool isAccepted = m_copy->take(entered);
    const bool isOther = m_copy->record() != before;
    if (isOther)
        m_dropped.clear();
    if (!strict && isAccepted)
        closeUp(entered);
    showNote(isAccepted);
    if (!strict && isOther)
        findSqlItem();
    return !strict || isAccepted;
}

/** Shows what was taken. Pairs that were dropped have left zeros in the copy, so what remains is
 *  taken again; without them those behind may have to go as well. */
void featconfui::closeUp(const CharacteristicEntry &taken)
{
    const CharacteristicLayout layout = characteristicLayout(taken.type);
    QStringList values = taken.values;
    for (bool isClosed = false; !isClosed;) {
        const QStringList kept = m_copy->feature().ratioStr;
        m_ui->ratioTable->showTexts(withValues(layout, m_ui->ratioTable->texts(), kept));
        const QStringList dropped = droppedPairs(values, kept);
        m_dropped += dropped;
        const CharacteristicEntry remaining = entry();
        isClosed = dropped.isEmpty() || !m_copy->take(remaining);
        values = remaining.values;
    }
}

void featconfui::needUpd()
{
    if (!m_copy)
        return;
    const int type = selectedType();
    const CharacteristicLayout layout = characteristicLayout(type);
    m_ui->reperTPFrame->setEnabled(layout.isOfPairs);
    m_ui->ratioTable->showLayout(layout);
    m_ui->ratioTable->showTexts(type == m_copy->feature().type ? cellTexts(m_copy->feature())
                                                               : blankCells(layout));
    findSqlItem();
}

void featconfui::on_featType_currentIndexChanged(int)
{
    needUpd();
    setFeature(false);
}

void featconfui::on_featName_editingFinished()
{
    setFeature(false);
}

/** Selects a type without taking its empty table into the copy. */
void featconfui::selectType(int type)
{
    if (type == m_ui->featType->currentIndex())
        return;
    const QSignalBlocker blocker(m_ui->featType);
    m_ui->featType->setCurrentIndex(type);
    needUpd();
}

void featconfui::showCopy()
{
    const QSignalBlocker blocker(m_ui->featType);
    m_dropped.clear();
    m_ui->featName->setText(m_copy->feature().name);
    m_ui->featType->setCurrentIndex(m_copy->feature().type);
    needUpd();
    setFeature(false);
}

void featconfui::showNote(bool isAccepted)
{
    const CellTexts cells = m_ui->ratioTable->texts();
    const CharacteristicNote note = noteOn(m_copy->feature(), cells, m_dropped, isAccepted);
    m_ui->noteLabel->setText(note.text);
    m_ui->noteLabel->setStyleSheet(
        note.isWarning ? QStringLiteral("color: #a3330c; font-weight: bold;") : QString());
    const bool isOfPairs = characteristicLayout(selectedType()).isOfPairs;
    m_ui->ratioTable->markNotRising(isOfPairs ? columnsNotRising(cells) : QVector<int>());
}

/** Shows a notice; that the instrument is gone stays in sight. */
void featconfui::notice(const QString &text)
{
    QStringList lines;
    if (!m_edited)
        lines << tr("Прибор удалён: применить градуировку некуда, но можно сохранить её в БД или в "
                    "файл");
    if (!text.isEmpty())
        lines << text;
    m_ui->noticeLabel->setText(lines.join('\n'));
    m_ui->noticeLabel->setVisible(!lines.isEmpty());
}

void featconfui::noticeLoss()
{
    m_ui->pushButton->setEnabled(false);
    notice({});
}

// Stored characteristics

void featconfui::findSqlItem()
{
    if (m_copy)
        m_stored->match(m_stored->id(), m_copy->record());
}

void featconfui::on_searchEdit_textChanged(const QString &text)
{
    if (text.isEmpty())
        findSqlItem();
    else
        m_stored->search(text);
}

void featconfui::on_dbFindCB_activated(int)
{
    takeStored();
}

void featconfui::on_dbFindCB_currentIndexChanged(int)
{
    takeStored();
}

/** One choice comes twice: as a change of the list and as its activation. */
void featconfui::takeStored()
{
    const int id = m_stored->chosenId();
    if (!m_copy || id < 1)
        return;
    const QByteArray record = storedRecord(id);
    if (m_stored->isShown(id, record, *m_copy))
        return;
    m_copy->load(record);
    m_stored->match(id, m_copy->record());
    showCopy();
}

void featconfui::on_saveDBBtn_clicked()
{
    store(&StoredPanel::save);
}

void featconfui::on_addDBBtn_clicked()
{
    store(&StoredPanel::add);
}

/** Stores what is entered, or what was accepted last, and says so. */
void featconfui::store(bool (StoredPanel::*keep)(const WorkingCopy &))
{
    if (!m_copy || !m_database)
        return;
    m_ui->ratioTable->endEdit();
    setFeature(false);
    const bool isTaken = setFeature(true);
    if (!(*m_stored.*keep)(*m_copy))
        notice(tr("Сохранить в БД не удалось"));
    else if (!isTaken)
        notice(tr("В БД сохранены последние принятые значения, а не те, что в таблице"));
    else
        notice({});
}

void featconfui::on_rmDBBtn_clicked()
{
    const int id = m_stored->id();
    const QPointer<featconfui> self(this);
    if (id < 1 ||
        UserDialogs::current().ask(this, removalQuestion(windowTitle())) != QMessageBox::Yes)
        return;
    if (!self || !m_copy)
        return;
    removeStoredCharacteristic(id);
    m_stored->match(0, m_copy->record());
}

// Files

void featconfui::on_pushButton_3_clicked()
{
    const QPointer<featconfui> self(this);
    const QString fileName = chooseCharacteristic(this, m_database, characteristicToLoad());
    if (!self || !m_copy || fileName.isEmpty())
        return;
    const CharacteristicFileReading reading = loadCharacteristicFile(fileName);
    if (reading.selectedType)
        selectType(*reading.selectedType);
    if (!reading.accepted)
        return UserDialogs::current().tell(this, unreadableCharacteristic());
    m_ui->featName->setText(reading.file.description);
    m_ui->ratioTable->showTexts(reading.file.rows);
    setFeature(false);
}

void featconfui::on_pushButton_4_clicked()
{
    m_ui->pushButton_4->setFocus();
    m_ui->ratioTable->endEdit();
    const QPointer<featconfui> self(this);
    const QString fileName =
        chooseCharacteristic(this, m_database, characteristicToSave(m_ui->featName->text()));
    if (!self || !m_copy || fileName.isEmpty())
        return;
    const CharacteristicFile file = {selectedType(), m_ui->featName->text(),
                                     m_ui->ratioTable->texts()};
    if (!saveCharacteristicFile(file, fileName))
        UserDialogs::current().tell(this, unwritableCharacteristic());
}

// Recalculation

void featconfui::on_reperTPBtn_clicked()
{
    if (!m_copy)
        return;
    QStringList pairs;
    const QPointer<featconfui> self(this);
    m_recalculation->setOutput(&pairs);
    const bool isAccepted = m_recalculation->exec() == Accepted;
    if (!self)
        return;
    m_recalculation->setOutput(nullptr);
    if (!isAccepted || !m_copy || !characteristicLayout(selectedType()).isOfPairs)
        return;
    m_ui->ratioTable->showTexts(
        withPairs(m_ui->ratioTable->texts(), m_ui->reperTPSpin->value() - 1, pairs));
    setFeature(false);
    if (pairs.isEmpty())
        notice(tr("Пересчёт: ТЭДС вне допустимого диапазона, таблица не изменена"));
}

// Keys and the end

void featconfui::on_pushButton_clicked()
{
    m_ui->pushButton->setFocus();
    m_ui->ratioTable->endEdit();
    if (!m_copy || !m_edited)
        return;
    if (!setFeature(true))
        return UserDialogs::current().tell(this, rejectedEntry());
    const QPointer<featconfui> self(this);
    m_edited->disconnect(this); // what follows is no change from elsewhere
    m_edited->setData(m_copy->record());
    if (self)
        accept();
}

void featconfui::on_pushButton_2_clicked()
{
    reject();
}

bool featconfui::eventFilter(QObject *watched, QEvent *event)
{
    // a wheel that rolls over one of the lists would replace the table
    return event->type() == QEvent::Wheel || QDialog::eventFilter(watched, event);
}

void featconfui::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && focusWidget() && !qobject_cast<QPushButton *>(focusWidget()))
        return; // in a field it ends an entry, and not the dialog
    QDialog::keyPressEvent(event);
}
